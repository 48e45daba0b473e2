#include "tests/vectors/vector_kind.h"

namespace keyvora::vectors {

std::span<const VectorKind> vectorKinds() {
  static constexpr VectorKind kinds[] = {
      {"decode.jsonl", checkDecode},
      {"letters.jsonl", checkLetters},
      {"lookup.jsonl", checkLookup},
      {"equal.jsonl", checkEqual},
  };
  return kinds;
}

}  // namespace keyvora::vectors
