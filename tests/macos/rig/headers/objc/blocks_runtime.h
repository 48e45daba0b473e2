#pragma once

// GNUstep's headers include the blocks runtime by this name.
#include <Block.h>
