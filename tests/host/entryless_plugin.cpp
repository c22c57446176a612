extern "C" int SomethingElse();

int SomethingElse() {
    return 0;
}
