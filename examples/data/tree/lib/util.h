#include "part.h"
