// A module for the loader tests. Loading and unloading it append "load <file>" and
// "unload <file>" to the file named by MATTONI_LOADER_TRACE, so a test can copy it under several
// names and see which copy the loaders load and unload, and when.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

void trace(const char *what)
{
    const char *traceFile = std::getenv("MATTONI_LOADER_TRACE");
    Dl_info info;
    if (!traceFile || !dladdr(reinterpret_cast<void *>(&trace), &info) || !info.dli_fname)
        return;
    const char *slash = std::strrchr(info.dli_fname, '/');
    if (FILE *f = std::fopen(traceFile, "a")) {
        std::fprintf(f, "%s %s\n", what, slash ? slash + 1 : info.dli_fname);
        std::fclose(f);
    }
}

__attribute__((constructor)) void loaded()
{
    trace("load");
}

__attribute__((destructor)) void unloaded()
{
    trace("unload");
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ModuleAnswer()
{
    return 42;
}
