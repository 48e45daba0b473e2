#pragma once

#include "mapping/mapping.h"

namespace keyvora {

class Runner;

/// Calls the runner's operation for the sequence's action. The label is the sequence's keys as written, two
/// spaces and its name. Main thread.
void perform(const Sequence& sequence, Runner& runner);

}  // namespace keyvora
