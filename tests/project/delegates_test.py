"""The cross-build's comparison of delegates with their protocols, on a class of this test that needs no SDK."""

import pathlib
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts" / "macos" / "cross"))
import check_delegates  # noqa: E402
import commands  # noqa: E402

SOURCE = """\
__attribute__((objc_root_class)) @interface Base
@end
@implementation Base
@end
@protocol Wide
- (void)must;
@end
@protocol Ear <Wide>
@optional
- (bool)hear:(id)who loud:(int)level;
@property (readonly) bool deaf;
@end
@interface One : Base <Ear>
- (void)own:(int)number;
@end
@implementation One
- (void)must {}
- (bool)hear:(id)who loud:(int)level { return true; }
- (bool)deaf { return false; }
- (void)own:(int)number {}
@end
"""


class Delegates(unittest.TestCase):
    def check(self, source: str) -> tuple[list[str], list[str]]:
        command = ["clang", "-target", "arm64-apple-macos13", "-x", "objective-c++", "-w", "-S", "-o", "-", "-"]
        try:
            result = subprocess.run(command, input=source, text=True, capture_output=True, check=False)
        except FileNotFoundError:
            self.skipTest("there is no clang")
        self.assertEqual(result.returncode, 0, result.stderr)
        return check_delegates.check(check_delegates.read_tables(result.stdout), source)

    def test_methods_of_all_protocols_agree(self) -> None:
        agreed, faults = self.check(SOURCE)
        self.assertEqual(faults, [])
        self.assertEqual(agreed, ["-[One must]: v16@0:8", "-[One hear:loud:]: B28@0:8@16i24", "-[One deaf]: B16@0:8"])

    def test_a_misspelt_method_is_found(self) -> None:
        right = "- (bool)hear:(id)who loud:(int)level {"
        _, faults = self.check(SOURCE.replace(right, right.replace("hear", "hears")))
        self.assertEqual(faults, ["-[One hears:loud:] is in no protocol that One adopts, and not declared as its own"])

    def test_another_type_is_found(self) -> None:
        _, faults = self.check(SOURCE.replace("loud:(int)level {", "loud:(double)level {"))
        self.assertEqual(faults, ["-[One hear:loud:] is B32@0:8@16d24; its protocol says B28@0:8@16i24"])

    def test_a_class_without_protocols_is_its_own_affair(self) -> None:
        self.assertEqual(self.check(SOURCE.replace("Base <Ear>", "Base")), ([], []))


class Commands(unittest.TestCase):
    def test_outputs_and_architectures_are_taken_off(self) -> None:
        line = "clang++ -DX -arch arm64 -arch x86_64 -MD -MT a.o -MF a.d -o a.o -c a.cpp"
        self.assertEqual(commands.without_output(line.split()), ["clang++", "-DX", "a.cpp"])


if __name__ == "__main__":
    unittest.main()
