#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace keyvora::json {

/// Writes compact JSON, piece by piece and in order, and adds the commas. Text must be well-formed UTF-8.
/// Used by one thread at a time.
class Writer {
 public:
  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }

  /// The key of the member whose value comes next.
  void key(std::string_view key);

  void string(std::string_view text);
  void number(std::int64_t number);

  /// The text so far; a complete document once every container is closed.
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  void open(char bracket);
  void close(char bracket);
  void separate();
  void quoted(std::string_view text);

  std::string text_;
  /// Whether the next value needs a comma before it.
  bool follows_ = false;
};

}  // namespace keyvora::json
