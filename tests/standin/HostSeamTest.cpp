// The seam that all host operations pass: each of them once, before it does anything, with what it is about;
// and an operation that is made to throw there leaves everything as it was.
#include <gmock/gmock.h>

#include <boost/shared_ptr.hpp>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "host/ICIMProperty.h"
#include "host/TCIMReference.h"
#include "host/TCIMSchemaHelper.h"
#include "host/TOSSpecific.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TQSVException.h"
#include "host/TRootObject.h"
#include "schema/ClassSchema.h"
#include "standin/HostSeam.h"
#include "standin/PluginManager.h"
#include "standin/ValueView.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using namespace NKESTA20;  // NOLINT(google-build-using-namespace): every operation here is the host's
using standin::HostCall;
using standin::HostOperation;
using standin::HostSeam;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using usbinfo_test::CommitEntity;
using usbinfo_test::MakeEntity;

using Operation = HostOperation;
using Type = TCIMValue::TCIMType;

/// Everything that the operations need, made before anyone watches.
struct World {
  boost::shared_ptr<ICIMNamespace> ns = standin::Host::Instance().Cimv2();
  boost::shared_ptr<ICIMClass> ports = ns->GetClass("KALDO_USBPort", {});
  boost::shared_ptr<ICIMInstance> committed = CommitEntity("KALDO_USBPort", "committed");
  boost::shared_ptr<ICIMInstance> fresh = MakeEntity("KALDO_USBPort", "fresh");
  boost::shared_ptr<ICIMProperty> property = committed->GetProperty("SystemName", {});
  TCIMReference path = standin::MakePath("C", {{"K", TCIMValue("v")}});
  TCIMValue text = TCIMValue("text");
  TCIMValue number = TCIMValue(static_cast<unsigned short>(7));
  std::vector<TCIMValue> elements = {text, text};
  TQSVStatusCode status = TQSVStatusCode(6);
  standin::PluginManager manager;
  usbinfo_test::IdlePlugin plugin;
  int visits = 0;
};

struct SeamCase {
  const char* name;
  HostOperation operation;
  std::string subject;
  std::function<void(World&)> run;
};

std::ostream& operator<<(std::ostream& out, const SeamCase& item) {
  return out << item.name;
}

std::vector<SeamCase> StaticOperations() {
  return {
      {"GetCoreLogger", Operation::kGetCoreLogger, "", [](World&) { TRootObject::GetCoreLogger(); }},
      {"GetPluginManager", Operation::kGetPluginManager, "", [](World&) { TRootObject::GetPluginManager(); }},
      {"RegisterPlugin", Operation::kRegisterPlugin, "",
       [](World& world) { world.manager.RegisterPlugin(&world.plugin); }},
      {"GetSystemName", Operation::kGetSystemName, "",
       [](World& world) { TCIMSchemaHelper::GetSystemName(world.ns); }},
      {"GetSystemCreationClassName", Operation::kGetSystemCreationClassName, "",
       [](World& world) { TCIMSchemaHelper::GetSystemCreationClassName(world.ns); }},
      {"FileExists", Operation::kFileExists, "/file", [](World&) { TOSSpecific::FileExists("/file"); }},
      {"CaptureFile", Operation::kCaptureFile, "/file", [](World&) { TOSSpecific::CaptureFile("/file"); }},
      {"SpawnProcess", Operation::kSpawnProcess, "command",
       [](World&) { TOSSpecific::SpawnProcess("command", 1); }},
      {"WriteLog", Operation::kWriteLog, "line",
       [](World&) { standin::Host::Instance().CoreLogger().Write(ILogger::kError, "line"); }},
      {"TranslateStatusCode", Operation::kTranslateStatusCode, "CIM_ERR_NOT_FOUND",
       [](World& world) { static_cast<void>(world.status.TranslateStatusCode()); }},
  };
}

std::vector<SeamCase> ObjectOperations() {
  return {
      {"GetClass", Operation::kGetClass, "KALDO_USBHub",
       [](World& world) { world.ns->GetClass("KALDO_USBHub", {}); }},
      {"GetClassName", Operation::kGetClassName, "KALDO_USBPort",
       [](World& world) { world.ports->GetClassName({}); }},
      {"GetClassNamespace", Operation::kGetClassNamespace, "KALDO_USBPort",
       [](World& world) { world.ports->GetNamespace({}); }},
      {"CreateInstance", Operation::kCreateInstance, "KALDO_USBPort",
       [](World& world) { world.ports->CreateInstance({}); }},
      {"EnumerateInstances", Operation::kEnumerateInstances, "KALDO_USBPort",
       [](World& world) {
         world.ports->EnumerateInstances([&world](auto) { return ++world.visits > 0; }, 0, {});
       }},
      {"Commit", Operation::kCommit, "KALDO_USBPort", [](World& world) { world.fresh->Commit({}); }},
      {"GetObjectPath", Operation::kGetObjectPath, "KALDO_USBPort",
       [](World& world) { world.fresh->GetObjectPath({}); }},
      {"GetInstanceClass", Operation::kGetInstanceClass, "KALDO_USBPort",
       [](World& world) { world.fresh->GetClass({}); }},
      {"GetProperty", Operation::kGetProperty, "SystemName",
       [](World& world) { world.committed->GetProperty("SystemName", {}); }},
      {"SetProperty", Operation::kSetProperty, "Name",
       [](World& world) { world.committed->SetProperty("Name", world.text, {}); }},
      {"GetPropertyValue", Operation::kGetPropertyValue, "SystemName",
       [](World& world) { world.property->GetValue({}); }},
      {"GetPropertyText", Operation::kGetPropertyText, "SystemName",
       [](World& world) { world.property->GetValueAsText(); }},
  };
}

std::vector<SeamCase> ValueOperations() {
  return {
      {"MakeStringValue", Operation::kMakeStringValue, "made", [](World&) { TCIMValue("made"); }},
      {"MakeNumberValue", Operation::kMakeNumberValue, "4711", [](World&) { TCIMValue(4711UL); }},
      {"MakeReferenceValue", Operation::kMakeReferenceValue, R"(C.K="v")",
       [](World& world) { static_cast<void>(TCIMValue(world.path)); }},
      {"MakeArrayValue", Operation::kMakeArrayValue, "2",
       [](World& world) { TCIMValue(Type::kStringArray, 2, world.elements); }},
      {"IsNull", Operation::kIsNull, "", [](World& world) { static_cast<void>(world.text.IsNull()); }},
      {"ConvertToString", Operation::kConvertToString, "",
       [](World& world) { static_cast<void>(static_cast<std::string>(world.number)); }},
      {"ConvertToNumber", Operation::kConvertToNumber, "",
       [](World& world) { static_cast<void>(static_cast<unsigned short>(world.number)); }},
      {"CompareReferences", Operation::kCompareReferences, R"(C.K="v")",
       [](World& world) { static_cast<void>(world.path == TCIMReference()); }},
  };
}

std::vector<SeamCase> AllOperations() {
  std::vector<SeamCase> all = StaticOperations();
  for (const auto& more : {ObjectOperations(), ValueOperations()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

/// What a test throws at the seam: a type that no other code throws or catches.
struct Refusal {};

class HostSeamTest : public usbinfo_test::HostTest, public ::testing::WithParamInterface<SeamCase> {
 protected:
  HostSeamTest() { machine->files["/file"] = "content"; }

  /// All that an operation could change, in one text.
  std::string Snapshot() {
    std::string text;
    for (const auto& schema : schema::ServedClasses()) {
      for (const auto& instance : usbinfo_test::ClassOf(schema.name)->Instances())
        text += Describe(*instance);
    }
    text += "fresh: " + Describe(dynamic_cast<standin::Instance&>(*world.fresh));
    return text + "plugins " + std::to_string(host.Plugins().size()) + " lines " +
           std::to_string(log.size()) + " calls " + std::to_string(calls.size()) + " visits " +
           std::to_string(world.visits);
  }

  World world;

 private:
  static std::string Describe(const standin::Instance& instance) {
    std::string text;
    for (const auto& [name, value] : instance.Properties()) {
      text += name + "=" + standin::TextOf(value) + ";";
    }
    return text + "\n";
  }
};

TEST_P(HostSeamTest, IsPassedOnceWithWhatTheOperationIsAbout) {
  std::vector<HostOperation> operations;
  std::vector<std::string> subjects;
  HostSeam::SetObserver([&](const HostCall& call) {
    operations.push_back(call.operation);
    subjects.push_back(call.subject);
  });
  GetParam().run(world);
  EXPECT_THAT(operations, ElementsAre(GetParam().operation));
  EXPECT_THAT(subjects, ElementsAre(GetParam().subject));
}

TEST_P(HostSeamTest, LeavesEverythingAsItWasWhenTheOperationThrowsThere) {
  const std::string before = Snapshot();
  HostSeam::SetObserver([](const HostCall&) { throw Refusal(); });
  EXPECT_THROW(GetParam().run(world), Refusal);
  HostSeam::SetObserver(nullptr);
  EXPECT_EQ(Snapshot(), before);
}

INSTANTIATE_TEST_SUITE_P(Operations, HostSeamTest, ::testing::ValuesIn(AllOperations()),
                         [](const auto& item) { return item.param.name; });

class HostSeamAlone : public usbinfo_test::HostTest {
 protected:
  /// Every call that `actions` make.
  static std::vector<HostOperation> Watch(const std::function<void()>& actions) {
    std::vector<HostOperation> seen;
    HostSeam::SetObserver([&seen](const HostCall& call) { seen.push_back(call.operation); });
    actions();
    HostSeam::SetObserver(nullptr);
    return seen;
  }
};

TEST_F(HostSeamAlone, HasACaseForEveryOperation) {
  std::vector<int> numbers;
  for (const SeamCase& item : AllOperations()) numbers.push_back(static_cast<int>(item.operation));
  std::vector<int> expected;
  for (int number = 0; number <= static_cast<int>(Operation::kTranslateStatusCode); ++number) {
    expected.push_back(number);
  }
  EXPECT_THAT(numbers, ::testing::UnorderedElementsAreArray(expected));
}

TEST_F(HostSeamAlone, SeesEachKindOfValueBeingMade) {
  TCIMReference path;
  const char* const text = nullptr;
  const auto seen = Watch([&] {
    static_cast<void>(TCIMValue(text));
    static_cast<void>(TCIMValue(std::string("s")));
    static_cast<void>(TCIMValue(static_cast<unsigned char>(1)));
    static_cast<void>(TCIMValue(static_cast<unsigned short>(1)));
    static_cast<void>(TCIMValue(1UL));
    static_cast<void>(TCIMValue(path));
  });
  EXPECT_THAT(seen, ElementsAre(Operation::kMakeStringValue, Operation::kMakeStringValue,
                                Operation::kMakeNumberValue, Operation::kMakeNumberValue,
                                Operation::kMakeNumberValue, Operation::kMakeReferenceValue));
}

TEST_F(HostSeamAlone, SeesNoCopies) {
  TCIMValue value("v");
  TCIMReference path = standin::MakePath("C", {{"K", value}});
  const auto seen = Watch([&] {
    TCIMValue copy(value);
    copy = TCIMValue();
    TCIMReference pathCopy(path);
    pathCopy = TCIMReference();
  });
  EXPECT_THAT(seen, IsEmpty());
}

TEST_F(HostSeamAlone, SeesNothingOfThoseWhoRunTheHost) {
  CommitEntity("KALDO_USBHub", "1");
  const auto seen = Watch([this] {
    const auto cls = host.Cimv2()->ClassForRequest("KALDO_USBHub");
    const auto& instance = cls->Instances().front();
    EXPECT_EQ(cls->Name(), "KALDO_USBHub");
    EXPECT_EQ(standin::TypeOf(*instance->Find("DeviceID")), Type::kString);
    EXPECT_EQ(standin::ClassNameOf(instance->Path()), "KALDO_USBHub");
    EXPECT_EQ(host.SystemName(), "testhost");
  });
  EXPECT_THAT(seen, IsEmpty());
}

TEST_F(HostSeamAlone, SeesFailingOperationsToo) {
  const auto seen = Watch([this] {
    try {
      host.Cimv2()->GetClass("unknown", {});
    } catch (const TQSVException&) {
      host.CoreLogger().Write(ILogger::kStatus, "caught");
    }
  });
  EXPECT_THAT(seen, ElementsAre(Operation::kGetClass, Operation::kWriteLog));
}

TEST_F(HostSeamAlone, CanFailTheNthCall) {
  int count = 0;
  HostSeam::SetObserver([&count](const HostCall&) {
    if (++count == 3) throw Refusal();
  });
  const TCIMValue first("1");
  const TCIMValue second("2");
  EXPECT_THROW(TCIMValue("3"), Refusal);
  const TCIMValue fourth("4");
  EXPECT_EQ(count, 4);
}

}  // namespace
