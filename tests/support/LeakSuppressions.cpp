// What LeakSanitizer is told to overlook in every test program, wherever it is run from: caches
// that live as long as the process by design.

extern "C" const char* __lsan_default_suppressions() {
    return
        // fontconfig's and Pango's font maps and patterns.
        "leak:libfontconfig.so\n"
        "leak:libpango-1.0.so\n"
        "leak:libpangoft2-1.0.so\n"
        "leak:libpangocairo-1.0.so\n"
        // SDL's input-method bridge on X11 keeps its D-Bus connection.
        "leak:libdbus-1.so\n";
}
