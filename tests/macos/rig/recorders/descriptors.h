#pragma once

namespace keyvora::rig {

/// Counts the descriptors that are open on files of the user's home, but for the standard ones and the
/// record; one that a program started from here would inherit is a violation. At the end.
void countOpenFiles(int recordFile);

}  // namespace keyvora::rig
