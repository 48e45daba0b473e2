#pragma once

#include "hosts/x11/applications/bundle.h"
#include "platform/bundles.h"

namespace keyvora::x11 {

/// The bundles of an installed program, and of one that runs from where it was built.
class Bundles final : public platform::Bundles {
 public:
  /// `executable` is the program's file, two levels below the prefix it is installed to.
  explicit Bundles(const std::filesystem::path& executable);

  const platform::Bundle& main() override;

  /// Everything is linked into the program.
  const platform::Bundle& containing() override;

  std::unique_ptr<platform::Bundle> open(const std::filesystem::path& directory) override;

 private:
  Bundle main_;
};

}  // namespace keyvora::x11
