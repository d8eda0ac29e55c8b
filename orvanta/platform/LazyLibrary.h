#pragma once
// LazyLibrary: a shared library of the system loaded on the first call into it rather than with
// the library. Loading the system libraries the engine uses (ICU, GIO, libtiff, pixman, ...) and
// the dozen more they bring costs a process several milliseconds before main; a command that
// needs none of them (a help text) or one of them (an EXIF thumbnail) pays only for what it uses.
//
// Contract: each such library has one source file (Lazy<Name>.cpp) that defines, for every
// function the engine calls, a function of the same name and signature that forwards to the real
// one, so the engine's code calls the library as if linked to it. These names are kept inside
// liborvanta.so by its version script (liborvanta.map): a host or another library that links the
// real library keeps its own. The first call of any of them loads the library by its soname
// (RTLD_LOCAL, never unloaded) and resolves every function of its table at once, thread-safely. A
// library or function that cannot be found is what a missing library was before: the process
// stops, with the library, the function and the loader's reason on standard error.

#include <dlfcn.h>

namespace Orvanta::Platform {

class LazyLibrary {
public:
    // Loads soname or ends the process.
    explicit LazyLibrary(const char* soname);

    // The function called name; ends the process when the library lacks it.
    template <typename Function>
    void resolve(Function& function, const char* name) const {
        function = reinterpret_cast<Function>(find(name));
    }

private:
    void* find(const char* name) const;
    [[noreturn]] void fail(const char* name) const;

    const char* mSoname;
    void* mHandle;
};

}  // namespace Orvanta::Platform

// The table of a library's functions and their forwarding functions, from a list of
// F(return type, name, (parameters), (arguments)) entries. In an anonymous namespace of the
// library's source file: ORVANTA_LAZY_TABLE(soname, LIST) declares table(), which loads the
// library on its first call; after the namespace, LIST(ORVANTA_LAZY_FORWARD) defines the functions.
// A name may be a macro (ICU renames its functions by version): the library is asked for what it
// expands to.
#define ORVANTA_LAZY_STRING(name) ORVANTA_LAZY_SPELLING(name)
#define ORVANTA_LAZY_SPELLING(name) #name
#define ORVANTA_LAZY_POINTER(Return, name, Parameters, Arguments) decltype(&::name) name = nullptr;
#define ORVANTA_LAZY_RESOLVE(Return, name, Parameters, Arguments) \
    library.resolve(loaded.name, ORVANTA_LAZY_STRING(name));
#define ORVANTA_LAZY_TABLE(soname, LIST)                          \
    struct Table {                                                \
        LIST(ORVANTA_LAZY_POINTER)                                \
    };                                                            \
    const Table& table() {                                        \
        static const Table functions = [] {                       \
            const Orvanta::Platform::LazyLibrary library(soname); \
            Table loaded;                                         \
            LIST(ORVANTA_LAZY_RESOLVE)                            \
            return loaded;                                        \
        }();                                                      \
        return functions;                                         \
    }
#define ORVANTA_LAZY_FORWARD(Return, name, Parameters, Arguments) \
    extern "C" Return name Parameters {                           \
        return table().name Arguments;                            \
    }
