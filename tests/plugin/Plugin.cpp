// A tiny shared library for the tests of the run-time loader: one function
// with C linkage to find by name.
extern "C" __attribute__((visibility("default"))) int buplugin_answer() {
    return 42;
}
