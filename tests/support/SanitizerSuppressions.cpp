// What the sanitizers are told to overlook in every test program, wherever it is run from: the
// system libraries' own doings, which are not ours to fix.

extern "C" const char* __lsan_default_suppressions() {
    return
        // Caches that live as long as the process by design: fontconfig's and Pango's font maps and
        // patterns.
        "leak:libfontconfig.so\n"
        "leak:libpango-1.0.so\n"
        "leak:libpangoft2-1.0.so\n"
        "leak:libpangocairo-1.0.so\n"
        // SDL's input-method bridge on X11 keeps its D-Bus connection.
        "leak:libdbus-1.so\n"
        // SANE's test backend, which the scanner tests also read in their own process, drops the
        // line buffers of a scan it hands out row by row.
        "leak:libsane-test.so\n";
}

extern "C" const char* __tsan_default_suppressions() {
    // Pango sets fontconfig up on a thread of its own while the first text is laid out; fontconfig,
    // not built for ThreadSanitizer, guards its data in ways the sanitizer cannot see. Its locks are
    // therefore unseen, and Pango's releasing one of them later looks like the unlock of an unlocked
    // mutex.
    return "called_from_lib:libfontconfig.so.1\n"
           "mutex:libpangoft2-1.0.so.0\n";
}
