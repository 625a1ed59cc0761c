#include "lib/util.hpp"
#include <vector>
#include "absent.hpp"
