#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// JSON read into a tree in which every key and value knows its position in the document. The dialect is
/// that of the platform's own decoder: UTF-8 with or without a byte-order mark, UTF-16 or UTF-32; an array
/// or object may have one trailing comma; containers nest at most `maximumDepth` deep; strings are
/// well-formed Unicode.
namespace keyvora::json {

/// Containers deeper than this are an error.
inline constexpr std::size_t maximumDepth = 512;
/// More keys and values than this are an error. This bounds the memory that a document can take.
inline constexpr std::size_t maximumNodes = std::size_t{1} << 22;
/// A longer document is an error.
inline constexpr std::size_t maximumBytes = std::size_t{1} << 31;

enum class Type : std::uint8_t { null, boolean, number, string, array, object };

/// A place in the document, as an editor shows it: counted from 1, columns in code points, a byte-order mark
/// not counted. A line ends with a line feed, a carriage return, or both.
struct Position {
  std::size_t line = 1;
  std::size_t column = 1;
  friend bool operator==(const Position&, const Position&) = default;
};

/// Why the bytes are not JSON: a reason for a person, without the position, and the place.
struct SyntaxError {
  std::string reason;
  Position position;
};

class Tree;
class Elements;
class Members;

/// One value (or key) of a tree: a small handle, valid until the tree is destroyed or moved.
class Value {
 public:
  [[nodiscard]] Type type() const;

  /// A string's characters with its escapes resolved; a number, `true`, `false` or `null` as written. Empty
  /// for containers. Points into the tree or its bytes.
  [[nodiscard]] std::string_view text() const;

  /// How many elements or members a container has, duplicates counted; 0 for other values.
  [[nodiscard]] std::size_t size() const;

  /// The position of its first character.
  [[nodiscard]] Position position() const;

  /// The offset of its first character in bytes, in the document as UTF-8 without a byte-order mark.
  [[nodiscard]] std::size_t offset() const;

  /// Its elements in order; empty unless an array.
  [[nodiscard]] Elements elements() const;

  /// Its members in order, duplicates included; empty unless an object.
  [[nodiscard]] Members members() const;

  /// The value of the first member whose key is canonically equivalent to `key`.
  [[nodiscard]] std::optional<Value> find(std::string_view key) const;

 private:
  friend class Tree;
  friend class Elements;
  friend class Members;
  Value(const Tree& tree, std::uint32_t index) : tree_(&tree), index_(index) {}
  const Tree* tree_;
  std::uint32_t index_;
};

struct Member {
  Value key;
  Value value;
};

/// A document's values. Immutable; any thread.
class Tree {
 public:
  /// Reads a whole document. The tree keeps views of `bytes`, which must outlive it. Never throws for bad
  /// input. Time and memory are proportional to the number of bytes.
  static std::variant<Tree, SyntaxError> parse(std::string_view bytes);

  [[nodiscard]] Value root() const { return {*this, 0}; }

 private:
  friend class Value;
  friend class Elements;
  friend class Members;
  friend class Reader;

  /// The nodes are in the order of the document: a container is followed by its content, a member's key by
  /// its value.
  struct Node {
    /// The offset of the first character in the text.
    std::uint32_t offset;
    /// The bytes of a scalar; the number of elements or members of a container.
    std::uint32_t size;
    /// For a container: the index of the node after its content. For a string with escapes: the offset of
    /// its characters in `unescaped_`.
    std::uint32_t extra;
    Type type;
    bool escaped;
  };

  [[nodiscard]] std::uint32_t next(std::uint32_t index) const;

  /// The document as UTF-8 without a byte-order mark.
  [[nodiscard]] std::string_view text() const { return converted_.empty() ? bytes_ : converted_; }

  /// The caller's bytes when they are UTF-8; otherwise the converted text.
  std::string_view bytes_;
  std::string converted_;
  std::string unescaped_;
  std::vector<Node> nodes_;
  /// The position of every 1024th byte of the text, so that finding a value's position reads only the text
  /// since then.
  std::vector<Position> milestones_;
};

/// The elements of an array, for a range-based loop.
class Elements {
 public:
  class Iterator {
   public:
    using difference_type = std::ptrdiff_t;
    using value_type = Value;
    Value operator*() const { return {*tree_, index_}; }
    Iterator& operator++();
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.index_ == b.index_; }

   private:
    friend class Elements;
    Iterator(const Tree& tree, std::uint32_t index) : tree_(&tree), index_(index) {}
    const Tree* tree_;
    std::uint32_t index_;
  };

  [[nodiscard]] Iterator begin() const { return {*tree_, begin_}; }
  [[nodiscard]] Iterator end() const { return {*tree_, end_}; }

 private:
  friend class Value;
  Elements(const Tree& tree, std::uint32_t begin, std::uint32_t end)
      : tree_(&tree), begin_(begin), end_(end) {}
  const Tree* tree_;
  std::uint32_t begin_;
  std::uint32_t end_;
};

/// The members of an object, for a range-based loop.
class Members {
 public:
  class Iterator {
   public:
    using difference_type = std::ptrdiff_t;
    using value_type = Member;
    Member operator*() const { return {{*tree_, index_}, {*tree_, index_ + 1}}; }
    Iterator& operator++();
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.index_ == b.index_; }

   private:
    friend class Members;
    Iterator(const Tree& tree, std::uint32_t index) : tree_(&tree), index_(index) {}
    const Tree* tree_;
    std::uint32_t index_;
  };

  [[nodiscard]] Iterator begin() const { return {*tree_, begin_}; }
  [[nodiscard]] Iterator end() const { return {*tree_, end_}; }

 private:
  friend class Value;
  Members(const Tree& tree, std::uint32_t begin, std::uint32_t end)
      : tree_(&tree), begin_(begin), end_(end) {}
  const Tree* tree_;
  std::uint32_t begin_;
  std::uint32_t end_;
};

}  // namespace keyvora::json
