#pragma once

#include <memory>

#include "platform/bundles.h"

namespace keyvora::macos {

/// NSBundle. Any thread.
class Bundles final : public platform::Bundles {
 public:
  Bundles();
  ~Bundles() override;

  const platform::Bundle& main() override;
  const platform::Bundle& containing() override;
  std::unique_ptr<platform::Bundle> open(const std::filesystem::path& directory) override;

 private:
  std::unique_ptr<platform::Bundle> main_;
  std::unique_ptr<platform::Bundle> containing_;
};

}  // namespace keyvora::macos
