// A small host: loads the plug-in module with the installed stand-in library, asks it for hubs and devices,
// and prints their properties. The program owns the module; the stand-in owns the instances.
// With CMake (PREFIX is where usbinfo is installed; below /usr, leave CMAKE_PREFIX_PATH out):
//   cmake -S examples/host -B build/example -G Ninja -DCMAKE_PREFIX_PATH=PREFIX
//   cmake --build build/example --target run
// With the compiler alone:
//   g++ -std=c++17 -o example-host examples/host/main.cpp $(pkg-config --cflags --libs usbinfo)
//   ./example-host "$(pkg-config --variable=plugin usbinfo)"
// Usage: example-host MODULE [DEVICE-LIST]    the default is this machine's list
#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/ILogger.h"
#include "standin/GivenDeviceList.h"
#include "standin/Host.h"
#include "standin/PluginModule.h"
#include "standin/ValueView.h"

using NKESTA20::ILogger;

namespace {

const std::vector<std::string> kClasses = {"KALDO_USBHub", "KALDO_USBDevice"};

/// Throws std::runtime_error when the file cannot be opened.
std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Devices choose their own strings: characters that could control the terminal become question marks.
std::string Harmless(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return text;
}

/// The stand-in is configured before the module is loaded.
void ConfigureHost(const std::vector<std::string>& arguments) {
  standin::Host& host = standin::Host::Instance();
  host.SetSystemName("example");
  host.CoreLogger().SetSink([](ILogger::EQSVLogSeverity severity, const std::string& text) {
    if (severity <= ILogger::kWarning) std::cerr << "log: " << Harmless(text) << "\n";
  });
  if (arguments.size() < 2) return;
  host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(ReadFile(arguments[1])));
}

/// An exception's type may live in the module, so its message is copied while the module is still loaded.
void Collect(const std::string& modulePath) {
  standin::PluginModule module(modulePath);
  try {
    module.Collect(kClasses);
  } catch (const std::exception& error) {
    throw std::runtime_error(std::string("the plug-in failed: ") + error.what());
  }
}

void Print(const std::string& className) {
  for (const auto& instance : standin::Host::Instance().Cimv2()->ClassForRequest(className)->Instances()) {
    std::cout << className << "\n";
    for (const auto& [name, value] : instance->Properties()) {
      std::cout << "  " << name << " = " << Harmless(standin::TextOf(value)) << "\n";
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) throw std::runtime_error("usage: example-host MODULE [DEVICE-LIST]");
    ConfigureHost(arguments);
    Collect(arguments.front());
    for (const std::string& className : kClasses) Print(className);
  } catch (const std::exception& error) {
    std::cerr << "example-host: " << Harmless(error.what()) << "\n";
    return 2;
  }
}
