// A C++ program that does nothing, for scripts/bench: what any program in this language takes to start and
// end.
int main() {}
