#pragma once

namespace keyvora::rig {

/// The state of the login item from now on: 0 not registered, 1 enabled, 2 requires approval, 3 not found.
void setLoginStatus(int status);

}  // namespace keyvora::rig
