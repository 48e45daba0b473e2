"""Measures the real program on a private desktop: `python3 bench/desktop FIGURE --programs FOLDER`

FIGURE is one of: startup, reload, delivery, idle, soak.
"""

import argparse
import os
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tests" / "desktop"))

from harness.panels import PANELS  # noqa: E402
from harness.private_desktop import PrivateDesktop  # noqa: E402

FIGURES = ("startup", "reload", "delivery", "idle", "soak")


def main() -> int:
    parser = argparse.ArgumentParser(prog="bench/desktop", description="Measures the real program.")
    parser.add_argument("figure", choices=FIGURES)
    parser.add_argument("--programs", type=Path, required=True, help="the build folder")
    parser.add_argument("--times", type=int, default=10_000, help="keys of each row (delivery)")
    parser.add_argument("--minutes", type=float, help="how long (idle: 1, soak: 10)")
    parser.add_argument("--panel", choices=sorted(PANELS), help="what shows the status item; a system tray without")
    arguments = parser.parse_args()
    print(f"{os.cpu_count()} processors, load {os.getloadavg()[0]:.1f} before the run", flush=True)
    with PrivateDesktop(tray=not arguments.panel) as desktop:
        if arguments.panel:
            PANELS[arguments.panel](desktop.children, desktop.home).start()
        # Imported only when the desktop is running, because the module joins the desktop that it finds.
        import delivery
        import idle
        import latency
        import soak
        run = {"startup": latency.startup, "reload": latency.reload, "delivery": delivery.measure,
               "idle": idle.measure, "soak": soak.run}
        run[arguments.figure](desktop, arguments)
    return 0


if __name__ == "__main__":
    sys.exit(main())
