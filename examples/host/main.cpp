// The smallest useful host: lists what is installed. It includes nothing of the library but src/intf.
//
// With CMake, below a checkout that is already configured (target Varcolin of the native build):
//
//     add_executable(list_programs examples/host/main.cpp)
//     target_include_directories(list_programs PRIVATE src)
//     target_link_libraries(list_programs PRIVATE Varcolin)
//
// or by hand: g++ -std=c++20 -Isrc examples/host/main.cpp -Lbuild/native -lVarcolin -Wl,-rpath,build/native
#include <chrono>
#include <iostream>
#include <string>
#include <thread>

#include "intf/intf_Machine.h"
#include "intf/intf_Varcolin.h"

extern "C" void* GetInstance(const char16_t* AGuid, std::uint32_t AParam);

namespace {

/// The ASCII part of a text; a real host converts to whatever it shows.
std::string Shown(std::u16string_view AText) {
  std::string result;
  for (const char16_t unit : AText) result += unit >= u' ' && unit <= u'~' ? static_cast<char>(unit) : '?';
  return result;
}

}  // namespace

int main(int ACount, char** AArguments) {
  using namespace varcolin;
  // which machine to read: an image folder, or the sample machine that is built in
  TOleText error;
  if (SelectMachine(ACount > 1 ? AArguments[1] : nullptr, error.Receive()) == nullptr) {
    std::cerr << Shown(error.View()) << '\n';
    return 2;
  }
  // the pointer carries no reference of ours, so one is added
  TInterfaceRef<IVarcolin> manager(static_cast<IVarcolin*>(GetInstance(VarcolinGuidText.data(), 0)));
  if (!manager) return 1;
  manager->Refresh();
  while (manager->GetState() != TVRCState::vrcsLoaded) std::this_thread::sleep_for(std::chrono::milliseconds(5));

  {
    TInterfaceRef<IProductCollection> programs;
    manager->GetPrograms(programs.Receive());
    TInterfaceRef<IProduct> program;
    TVariantValue name;
    programs->Lock();  // from here to Unlock the list stays as it is
    for (std::int32_t i = 0; i < programs->GetCount(); ++i) {
      programs->GetItem(i, program.Receive());
      program->GetProperty(static_cast<std::int32_t>(TPropertyID::DisplayName), name.Receive());
      const TOleVariant& value = name.Value();
      if (value.Type == EVariantType::String) std::cout << Shown({value.String, OleStringLength(value.String)}) << '\n';
    }
    programs->Unlock();
  }
  manager->Stop();  // before the library goes
  return 0;
}
