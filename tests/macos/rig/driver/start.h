#pragma once

namespace keyvora::rig {

/// Prepares the process: blocks, the record, differences between GNUstep and a Mac, the main queue, the
/// script. Call it when all classes are loaded, before `main`.
void start();

}  // namespace keyvora::rig
