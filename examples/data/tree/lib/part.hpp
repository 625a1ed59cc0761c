#include "../app.cc"
