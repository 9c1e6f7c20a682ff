// TDLLLoader: entry points of shared libraries, loaded on demand and kept in a most-recently-used
// cache (see ModuleLoader.h). Default extension ".DLL".
#pragma once

#include "Exceptions.h"
#include "ModuleLoader.h"

namespace mattoni {

MATTONI_DECLARE_EXCEPTION(TDLLLoaderException, Exception)

class MATTONI_CORE_EXPORT TDLLLoader : public TModuleLoader
{
    Q_OBJECT
public:
    // A module that cannot be loaded is cached with a null handle and yields null entry points.
    explicit TDLLLoader(QObject *owner = nullptr);

    // Path + Name, plus ".DLL" when the result holds no "." anywhere.
    void SetDLLName(const QString &Name) { SetModuleName(Name); }
    // The last full module name built.
    const QString &DLLName() const { return ModuleName(); }
};

} // namespace mattoni
