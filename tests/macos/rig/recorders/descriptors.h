#pragma once

namespace keyvora::rig {

/// Counts the open descriptors of files in the user's home, except the standard ones and the record. One
/// that a child process would inherit is a violation. Called at the end.
void countOpenFiles(int recordFile);

}  // namespace keyvora::rig
