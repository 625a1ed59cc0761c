#include "part.hpp"
