#include "hosts/simulated/bundles.h"

namespace keyvora::simulated {

class Bundles::View final : public platform::Bundle {
 public:
  View(World& world, const BundleContents& contents) : world_(world), contents_(contents) {}

  [[nodiscard]] std::filesystem::path directory() const override { return contents_.directory; }

  [[nodiscard]] std::optional<std::filesystem::path> resourceDirectory() const override {
    if (world_.fails(Call::resourceDirectory)) return std::nullopt;
    return contents_.resourceDirectory;
  }

  [[nodiscard]] std::optional<std::filesystem::path> resource(std::string_view name,
                                                              std::string_view extension) const override {
    if (world_.fails(Call::resource)) return std::nullopt;
    return find(contents_.resources, std::string(name) + "." + std::string(extension));
  }

  [[nodiscard]] std::optional<std::string> information(std::string_view key) const override {
    if (world_.fails(Call::information)) return std::nullopt;
    return find(contents_.information, key);
  }

  [[nodiscard]] std::optional<std::string> identifier() const override {
    if (world_.fails(Call::identifier)) return std::nullopt;
    return contents_.identifier;
  }

 private:
  template <class Value>
  static std::optional<Value> find(const std::map<std::string, Value, std::less<>>& values,
                                   std::string_view key) {
    const auto found = values.find(key);
    if (found == values.end()) return std::nullopt;
    return found->second;
  }

  World& world_;
  const BundleContents& contents_;
};

Bundles::Bundles(World& world) : world_(world) {
  mainBundle.directory = "/Applications/keyvora.app";
  mainBundle.resourceDirectory = "/Applications/keyvora.app/Contents/Resources";
  mainBundle.information = {{"CFBundleShortVersionString", "1.2"}, {"CFBundleVersion", "42"}};
  mainBundle.identifier = "org.keyvora.keyvora";
  containingBundle = mainBundle;

  BundleContents defaults;
  defaults.directory = *mainBundle.resourceDirectory / "keyvora_keyvora.bundle";
  defaults.resourceDirectory = defaults.directory;
  defaults.resources = {{"mappings.json", defaults.directory / "mappings.json"}};
  others.emplace(defaults.directory, defaults);

  main_ = std::make_unique<View>(world_, mainBundle);
  containing_ = std::make_unique<View>(world_, containingBundle);
}

Bundles::~Bundles() = default;

const platform::Bundle& Bundles::main() {
  return *main_;
}

const platform::Bundle& Bundles::containing() {
  return *containing_;
}

std::unique_ptr<platform::Bundle> Bundles::open(const std::filesystem::path& directory) {
  if (world_.fails(Call::openBundle)) return nullptr;
  const auto found = others.find(directory);
  if (found == others.end()) return nullptr;
  return std::make_unique<View>(world_, found->second);
}

}  // namespace keyvora::simulated
