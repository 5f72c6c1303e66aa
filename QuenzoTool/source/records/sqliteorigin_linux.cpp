// SPDX-License-Identifier: MIT
// By the loader's own records: the address that the driver's plugin calls a function of SQLite at.
#include "records/sqlitedirect.h"

#include <QSqlDriver>

#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <sqlite3.h>

namespace {

// Every open connection has called it, so that even a lazily bound plugin has its address.
constexpr const char* calledByAll = "sqlite3_open_v2";

struct Relocations {
    const ElfW(Rela) * first = nullptr;
    std::size_t bytes = 0;
};

struct DynamicSection {
    const ElfW(Sym) * symbols = nullptr;
    const char* names = nullptr;
    Relocations calls; // of functions that are bound on their first call
    Relocations others;
};

// Where the loader leaves the section as it is in the file, its pointers are offsets.
template <typename T> const T* located(const link_map& module, ElfW(Addr) place)
{
    return reinterpret_cast<const T*>(place < module.l_addr ? module.l_addr + place : place);
}

DynamicSection dynamicSectionOf(const link_map& module)
{
    DynamicSection section;
    for (const ElfW(Dyn)* entry = module.l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_SYMTAB)
            section.symbols = located<ElfW(Sym)>(module, entry->d_un.d_ptr);
        else if (entry->d_tag == DT_STRTAB)
            section.names = located<char>(module, entry->d_un.d_ptr);
        else if (entry->d_tag == DT_JMPREL)
            section.calls.first = located<ElfW(Rela)>(module, entry->d_un.d_ptr);
        else if (entry->d_tag == DT_PLTRELSZ)
            section.calls.bytes = entry->d_un.d_val;
        else if (entry->d_tag == DT_PLTREL && entry->d_un.d_val != DT_RELA)
            return {};
        else if (entry->d_tag == DT_RELA)
            section.others.first = located<ElfW(Rela)>(module, entry->d_un.d_ptr);
        else if (entry->d_tag == DT_RELASZ)
            section.others.bytes = entry->d_un.d_val;
    }
    return section;
}

std::size_t symbolOf(const ElfW(Rela) & relocation)
{
    constexpr unsigned typeBits = sizeof(relocation.r_info) == 8 ? 32 : 8;
    return static_cast<std::size_t>(relocation.r_info >> typeBits);
}

// Null when the module brings the function itself, or does not call it.
const void* importedAddress(const link_map& module, const char* name)
{
    const DynamicSection section = dynamicSectionOf(module);
    if (section.symbols == nullptr || section.names == nullptr)
        return nullptr;
    for (const Relocations& relocations : {section.calls, section.others}) {
        const std::size_t count = relocations.first == nullptr ? 0 : relocations.bytes / sizeof(ElfW(Rela));
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t symbol = symbolOf(relocations.first[i]);
            if (symbol != 0 && std::strcmp(section.names + section.symbols[symbol].st_name, name) == 0)
                return *reinterpret_cast<const void* const*>(module.l_addr + relocations.first[i].r_offset);
        }
    }
    return nullptr;
}

} // namespace

bool SqliteDirect::isSharedWith(const QSqlDriver& driver)
{
    Dl_info unused;
    void* module = nullptr;
    // The plugin is where the class of its driver is described.
    if (dladdr1(driver.metaObject(), &unused, &module, RTLD_DL_LINKMAP) == 0 || module == nullptr)
        return false;
    return importedAddress(*static_cast<const link_map*>(module), calledByAll)
        == reinterpret_cast<const void*>(&sqlite3_open_v2);
}
