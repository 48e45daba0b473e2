#include "tests/vectors/vector_kind.h"

namespace keyvora::vectors {

std::span<const VectorKind> vectorKinds() {
  static constexpr VectorKind kinds[] = {
      {"decode.jsonl", checkDecode},     {"letters.jsonl", checkLetters}, {"lookup.jsonl", checkLookup},
      {"equal.jsonl", checkEqual},       {"keycode.jsonl", checkKeycode}, {"keytips.jsonl", checkKeytips},
      {"typing.jsonl", checkTyping},     {"menu.jsonl", checkMenu},       {"tap.jsonl", checkTap},
      {"versions.jsonl", checkVersions},
  };
  return kinds;
}

}  // namespace keyvora::vectors
