#pragma once

#include "hosts/x11/applications/bundle.h"
#include "platform/bundles.h"

namespace keyvora::x11 {

/// The bundles of an installed program, or of one in its build folder.
class Bundles final : public platform::Bundles {
 public:
  /// `executable` is the program's file, two levels below the installation prefix.
  explicit Bundles(const std::filesystem::path& executable);

  const platform::Bundle& main() override;

  /// The main bundle: all code is linked into the program.
  const platform::Bundle& containing() override;

  std::unique_ptr<platform::Bundle> open(const std::filesystem::path& directory) override;

 private:
  Bundle main_;
};

}  // namespace keyvora::x11
