#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// JSON read into a tree in which every key and value knows where it stands in the document. The dialect is
/// that of the platform's own decoder: UTF-8 with or without a byte-order mark, UTF-16 or UTF-32; one comma
/// may trail in an array or object; containers nest at most `maximumDepth` deep; strings are whole Unicode
/// text.
namespace keyvora::json {

/// Containers deeper than this are an error.
inline constexpr std::size_t maximumDepth = 512;
/// More keys and values than this are an error: it bounds the memory that any document can take.
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

/// One value (or key) of a tree: a small handle, valid as long as the tree stays where it is.
class Value {
 public:
  [[nodiscard]] Type type() const;

  /// A string's characters with its escapes resolved; a number, `true`, `false` or `null` as written. Empty
  /// for containers. Points into the tree or its bytes.
  [[nodiscard]] std::string_view text() const;

  /// How many elements or members a container has, duplicates counted; 0 for the rest.
  [[nodiscard]] std::size_t size() const;

  /// Where its first character stands.
  [[nodiscard]] Position position() const;

  /// The same in bytes, in the document as UTF-8 without a byte-order mark.
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
  /// input, and takes time and memory in proportion to the bytes, whatever they are.
  static std::variant<Tree, SyntaxError> parse(std::string_view bytes);

  [[nodiscard]] Value root() const { return {*this, 0}; }

 private:
  friend class Value;
  friend class Elements;
  friend class Members;
  friend class Reader;

  /// The nodes are the document in its order: a container's content follows it, a member is its key's node
  /// and then its value's.
  struct Node {
    /// Of the first character in the text.
    std::uint32_t offset;
    /// Bytes of a scalar; elements or members of a container.
    std::uint32_t size;
    /// Of a container: the index of the node after its content. Of a string with escapes: where its
    /// characters start in `unescaped_`.
    std::uint32_t extra;
    Type type;
    bool escaped;
  };

  [[nodiscard]] std::uint32_t next(std::uint32_t index) const;

  /// The document as UTF-8 without a byte-order mark.
  [[nodiscard]] std::string_view text() const { return converted_.empty() ? bytes_ : converted_; }

  /// The caller's bytes, when they are UTF-8, and what was made of them otherwise.
  std::string_view bytes_;
  std::string converted_;
  std::string unescaped_;
  std::vector<Node> nodes_;
  /// The places of every so many bytes of the text, so that a value's place takes no look at what is far
  /// before it.
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
