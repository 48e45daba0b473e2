#include "json/tree.h"

#include "text/text.h"

namespace keyvora::json {

std::uint32_t Tree::next(std::uint32_t index) const {
  const Node& node = nodes_[index];
  const bool container = node.type == Type::array || node.type == Type::object;
  return container ? node.extra : index + 1;
}

Elements::Iterator& Elements::Iterator::operator++() {
  index_ = tree_->next(index_);
  return *this;
}

Members::Iterator& Members::Iterator::operator++() {
  index_ = tree_->next(index_ + 1);
  return *this;
}

Type Value::type() const {
  return tree_->nodes_[index_].type;
}

std::string_view Value::text() const {
  const auto& node = tree_->nodes_[index_];
  switch (node.type) {
    case Type::array:
    case Type::object:
      return {};
    case Type::string:
      if (node.escaped) return std::string_view(tree_->unescaped_).substr(node.extra, node.size);
      return tree_->text().substr(node.offset + 1, node.size);
    default:
      return tree_->text().substr(node.offset, node.size);
  }
}

std::size_t Value::size() const {
  const auto& node = tree_->nodes_[index_];
  return node.type == Type::array || node.type == Type::object ? node.size : 0;
}

Elements Value::elements() const {
  const std::uint32_t begin = index_ + 1;
  return {*tree_, begin, type() == Type::array ? tree_->nodes_[index_].extra : begin};
}

Members Value::members() const {
  const std::uint32_t begin = index_ + 1;
  return {*tree_, begin, type() == Type::object ? tree_->nodes_[index_].extra : begin};
}

std::optional<Value> Value::find(std::string_view key) const {
  for (const Member member : members()) {
    if (text::equal(member.key.text(), key)) return member.value;
  }
  return {};
}

}  // namespace keyvora::json
