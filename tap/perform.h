#pragma once

#include "mapping/mapping.h"

namespace keyvora {

class Runner;

/// Has `runner` carry out the sequence's action, labelled with the sequence's keys as written, two spaces and
/// its name. Main thread.
void perform(const Sequence& sequence, Runner& runner);

}  // namespace keyvora
