#pragma once

namespace Quillon::Cli {

/// Opens a module of the program, a file in `lib/quillon` beside the program's own folder, and
/// returns its table of functions, as which its header declares it. It stays open. `need` is what
/// it is for, for the user. Throws CommandError where the module or a library of its own is not
/// there. Any thread.
const void* LoadModule(const char* name, const char* need);

/// The same as the module's table. A module has one, whose type only the module and its stand-in
/// in the program know.
template <class Table>
const Table& LoadModule(const char* name, const char* need) {
  return *static_cast<const Table*>(LoadModule(name, need));
}

/// What a module exports, and all that it exports: its table.
extern "C" const void* QuillonModule();

}  // namespace Quillon::Cli
