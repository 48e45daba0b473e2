#pragma once

namespace keyvora::rig {

/// Makes the process ready: blocks, the record, what GNUstep does otherwise, the main queue, the script. Once
/// all classes are known, before `main`.
void start();

}  // namespace keyvora::rig
