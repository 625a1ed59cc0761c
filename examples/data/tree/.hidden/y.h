#include "../app.cpp"
