#pragma once

// GNUstep's headers ask for the blocks runtime by this name.
#include <Block.h>
