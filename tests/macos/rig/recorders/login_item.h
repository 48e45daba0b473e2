#pragma once

namespace keyvora::rig {

/// What the system answers about the login item from now on: 0 not registered, 1 enabled, 2 requires
/// approval, 3 not found.
void setLoginStatus(int status);

}  // namespace keyvora::rig
