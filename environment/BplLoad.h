// TBPLLoader: entry points of run-time packages, shared libraries that register what they hold
// when loaded, kept in a most-recently-used cache (see ModuleLoader.h). Default extension ".BPL".
#pragma once

#include "Exceptions.h"
#include "ModuleLoader.h"

namespace mattoni {

MATTONI_DECLARE_EXCEPTION(TBPLLoaderException, Exception)

class MATTONI_CORE_EXPORT TBPLLoader : public TModuleLoader
{
    Q_OBJECT
public:
    // A package that cannot be loaded raises EPackageError out of ProcAddress.
    explicit TBPLLoader(QObject *owner = nullptr);

    // Path + Name, plus ".BPL" when the result holds no "." anywhere.
    void SetBPLName(const QString &Name) { SetModuleName(Name); }
    // The last full module name built.
    const QString &BPLName() const { return ModuleName(); }
};

} // namespace mattoni
