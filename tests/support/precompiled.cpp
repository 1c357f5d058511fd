// Carries the precompiled header; the program itself is never run.
int main() {
    return 0;
}
