#include "lib/util.h"
#include <vector>
#include "absent.h"
