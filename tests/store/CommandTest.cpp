// The built program, as people and rsyslog run it.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include "cli/collect/SerialMask.h"
#include "store/HostUpkeep.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/store/support/StoreTest.h"

using ::testing::HasSubstr;

namespace usbinfo_test {

namespace {

mode_t ModeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

std::string ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

const char* const kDesktop = SOURCE_DIR "/examples/desktop.json";

}  // namespace

class CommandTest : public StoreTest {
 protected:
  Command Store(std::vector<std::string> arguments) const {
    return Command(std::move(arguments)).Set("USBINFO_STORE_DB", Name());
  }

  CommandResult Run(std::vector<std::string> arguments) const { return Store(std::move(arguments)).Run(); }
};

TEST_P(CommandTest, AnswersWhoHasWhatWhereAndWhen) {
  const CommandResult loaded = Run({"load", kDesktop});
  EXPECT_EQ(loaded.errors, "");
  EXPECT_EQ(loaded.status, 0);
  EXPECT_EQ(loaded.output,
            "CHANGED UNCHANGED KNOWN LATE REFUSED\n"
            "      1         0     0    0       0\n");

  EXPECT_EQ(Run({"hosts"}).output,
            "HOST       LAST REPORT          REPORTS HUBS PORTS DEVICES LATE SUSPECT LAST ERROR\n"
            "vm-desktop 2026-11-21T23:16:23Z       1    5    26       6    0       0\n");
  EXPECT_EQ(Run({"hosts", "--silent-for", "10000w"}).status, 1);

  EXPECT_EQ(Run({"find", "--serial", "STICK01", "--format", "csv"}).output,
            "host,place,kinds,manufacturer,product,id,serial,speed,drivers,since,until\r\n"
            "vm-desktop,2-1,mass storage,QEMU,QEMU USB HARDDRIVE,46f4:0001,STICK01,5000,usb-storage,"
            "2026-11-21T23:16:23Z,\r\n");
  EXPECT_EQ(Json::parse(Run({"find", "--kind", "Mass Storage", "--format", "json"}).output)["devices"].size(),
            2u);
  EXPECT_EQ(Json::parse(Run({"find", "--name", "usb m", "--format", "json"}).output)["devices"].size(), 1u);
  EXPECT_EQ(Json::parse(Run({"find", "-d", "0627:", "-d", "46f4:0003", "--format", "json"}).output)["devices"]
                .size(),
            3u);
  EXPECT_EQ(Json::parse(Run({"find", "--kind", "hub", "--format", "json"}).output)["devices"].size(), 1u);
  const CommandResult before = Run({"find", "--serial", "STICK01", "--at", "2026-11-21T23:16:22Z"});
  EXPECT_EQ(before.status, 1);
  EXPECT_EQ(before.output, "");
  EXPECT_THAT(before.errors, HasSubstr("usbinfo-store: no device found"));

  EXPECT_EQ(Run({"show", "vm-desktop", "--format", "json"}).output, SourceFile("examples/desktop.json"));
  EXPECT_EQ(Run({"show", "nobody"}).errors,
            "usbinfo-store: the store has no host nobody; usbinfo-store hosts lists them\n");
}

TEST_P(CommandTest, PrintsChangesInTheCharacterSetOfItsOwnLocaleAndExitsWithOneWithoutAny) {
  Json document = Desktop(kNow - kDay);
  const std::string first = document.dump() + "\n";
  document["origin"]["collected"] = store::FormatTime(kNow - kHour);
  document["kernel"]["devices"].back()["product"] = "Gr\u00fc\u00dfe";
  EXPECT_EQ(Store({"load"}).Set("LC_ALL", "C").Input(first + document.dump()).Run().status, 0);

  const std::string heading =
      "\"vm-desktop\" (2026-11-21 00:00:00 UTC) -> \"vm-desktop\" (2026-11-21 23:00:00 UTC)\n";
  const std::string line =
      "~ 4-1: mouse 056a:0000 \"Wacom PenPartner\" -> 056a:0000 \"{}\", serial \"PEN-1\"\n";
  const CommandResult utf8 = Store({"changes"}).Set("LC_ALL", "C.UTF-8").Run();
  EXPECT_THAT(utf8.output, HasSubstr(heading + fmt::format(fmt::runtime(line), "Gr\u00fc\u00dfe")));
  EXPECT_EQ(utf8.status, 0);
  EXPECT_THAT(Store({"changes"}).Set("LC_ALL", "C").Run().output,
              HasSubstr(heading + fmt::format(fmt::runtime(line), R"(Gr\xc3\xbc\xc3\x9fe)")));

  const CommandResult none = Run({"changes", "--since", "2026-11-22"});
  EXPECT_EQ(none.output + none.errors, "");
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(Run({"changes", "--host", "nobody"}).errors,
            "usbinfo-store: the store has no host nobody; usbinfo-store hosts lists them\n");
}

TEST_P(CommandTest, FindsASerialNumberThatIsMaskedWithTheKey) {
  const TemporaryFolder folder;
  const std::string key = folder.File("key", std::string(32, 'k'));
  ASSERT_EQ(::chmod(key.c_str(), 0600), 0);
  const cli::SerialMask mask = cli::SerialMask::OfKeyFile(key);
  Json document = Desktop(kNow - kDay);
  document["origin"]["masked"] = {{"key", *mask.Fingerprint()}};
  Json& facts = document["kernel"]["devices"].back();
  facts["serial"] = mask.Mask("PEN-1");
  Load(document);

  const CommandResult without = Run({"find", "--serial", "PEN-1"});
  EXPECT_EQ(without.status, 1);
  EXPECT_THAT(without.errors,
              HasSubstr("serial numbers of some hosts are masked: name the key with --mask-key"));
  const CommandResult with = Run({"find", "--serial", "PEN-1", "--mask-key", key, "--format", "json"});
  EXPECT_EQ(with.errors, "");
  EXPECT_EQ(Json::parse(with.output)["devices"][0]["serial"], facts["serial"]);

  ASSERT_EQ(::chmod(key.c_str(), 0640), 0);
  EXPECT_EQ(Run({"find", "--serial", "PEN-1", "--mask-key", key}).errors,
            "usbinfo-store: other users can read or write the key in " + key + "; run \"chmod 600\" on it\n");
}

TEST_P(CommandTest, LoadsWhatItCanAndReportsWhatItRefuses) {
  const std::string line = Desktop(kNow - kDay).dump();
  EXPECT_EQ(Run({"load", kDesktop, kDesktop, "/nowhere"}).errors,
            "usbinfo-store: cannot read /nowhere: No such file or directory; check the name\n");
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report"), 1);
  store::Forget(Db(), "vm-desktop");
  const CommandResult result =
      Store({"load"}).Input("garbage\n" + line + "\n{\"cut\":\n" + line + "\n").Run();
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "CHANGED UNCHANGED KNOWN LATE REFUSED\n"
            "      1         0     1    0       2\n");
  EXPECT_EQ(
      result.errors,
      "usbinfo-store: refused: standard input holds no inventory: line 1, column 1: not valid JSON; save it "
      "anew with usbinfo --format json\n"
      "usbinfo-store: refused: standard input, document 3 holds no inventory: line 2, column 1: the document "
      "ends too early; save it anew with usbinfo --format json\n");
  EXPECT_EQ(Count("SELECT COUNT(*) FROM refused"), 2);
}

TEST_P(CommandTest, ConfirmsEachLineUnlessTheDatabaseFails) {
  const std::string line = " " + Desktop(kNow - kDay).dump() + "\n";
  const CommandResult result = Store({"load", "--confirm"}).Input(line + "\n{}\n" + line + "{\"cut").Run();
  EXPECT_EQ(result.output, "OK\nOK\nOK\nOK\nOK\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report"), 1);

  Db().Execute("DROP VIEW change", {});
  Db().Execute("ALTER TABLE report RENAME TO hidden", {});
  const CommandResult failing = Store({"load", "--confirm"}).Input(line + line).Run();
  EXPECT_THAT(failing.output,
              ::testing::MatchesRegex("OK\nthe store [^\n]*report[^\n]*\nthe store [^\n]*\n"));
  EXPECT_EQ(failing.status, 0);
}

TEST(OutputOfTheStore, IsNeverAFileOfTheStore) {
  const TemporaryFolder folder;
  const std::string store = folder.File("store.db");
  const std::string link = folder.File("link.db");
  const auto run = [&](const std::string& database, std::vector<std::string> arguments) {
    return Command(std::move(arguments)).Set("USBINFO_STORE_DB", database).Set("HOME", folder.Path()).Run();
  };
  ASSERT_EQ(run(store, {"load", kDesktop}).status, 0);
  std::filesystem::create_symlink("store.db", link);
  const std::string content = ContentOf(store);

  const std::vector<std::vector<std::string>> commands = {{"hosts"},
                                                          {"load", kDesktop},
                                                          {"collect", "-w", "web1"},
                                                          {"find"},
                                                          {"changes"},
                                                          {"show", "vm-desktop"},
                                                          {"forget", "vm-desktop"},
                                                          {"rename", "vm-desktop", "other"},
                                                          {"prune", "--keep", "1s"},
                                                          {"migrate"},
                                                          {"schema"}};
  for (std::vector<std::string> command : commands) {
    command.emplace_back("--output");
    command.emplace_back();
    for (const std::string& database : {store, link}) {
      for (const std::string& output : {store, link, store + "-wal", store + "-shm", store + "-journal"}) {
        command.back() = output;
        const CommandResult result = run(database, command);
        EXPECT_EQ(result.errors, "usbinfo-store: --output and the store name one file, " + output +
                                     "; name another one for --output\n")
            << command.front();
        EXPECT_EQ(result.status, 2);
      }
    }
  }
  EXPECT_EQ(ContentOf(store), content);
  EXPECT_EQ(run(store, {"hosts", "--output", folder.File("hosts")}).status, 0);
}

TEST(OutputOfTheStore, IsNotTheStoreThatIsStillToBeMade) {
  const TemporaryFolder folder;
  const std::string store = folder.File("data/usbinfo/store.db");
  const CommandResult result =
      Command({"load", kDesktop, "--output", store}).Set("XDG_DATA_HOME", folder.File("data")).Run();
  EXPECT_THAT(result.errors, HasSubstr("--output and the store name one file"));
  EXPECT_EQ(result.status, 2);
  EXPECT_FALSE(std::filesystem::exists(folder.File("data")));
}

TEST(OutputOfTheStore, IsAnyOtherFileWhereTheSchemaIsWrittenWithoutAStore) {
  const TemporaryFolder folder;
  EXPECT_EQ(Command({"schema", "--output", folder.File("schema.sql")}).Run().errors, "");
  EXPECT_THAT(ContentOf(folder.File("schema.sql")), HasSubstr("CREATE TABLE host"));
}

FOR_BOTH_DATABASES(CommandTest);

TEST(StoreFile, IsMadeAtFirstLoadForItsOwnerOnly) {
  const TemporaryFolder folder;
  const auto run = [&](std::vector<std::string> arguments) {
    return Command(std::move(arguments)).Set("XDG_DATA_HOME", folder.File("data")).Run();
  };
  const CommandResult hosts = run({"hosts"});
  EXPECT_EQ(hosts.status, 2);
  EXPECT_THAT(hosts.errors, HasSubstr("there is no store " + folder.File("data/usbinfo/store.db")));
  EXPECT_EQ(run({"load", kDesktop}).status, 0);
  EXPECT_EQ(ModeOf(folder.File("data/usbinfo")), 0700u);
  EXPECT_EQ(ModeOf(folder.File("data/usbinfo/store.db")), 0600u);
  EXPECT_EQ(run({}).status, 0);
}

TEST(StoreFile, IsNotAFileOfAnotherKindAndAServerMustAnswer) {
  const TemporaryFolder folder;
  const CommandResult other =
      Command({"load", "--db", folder.File("text", std::string(4096, 'x')), kDesktop}).Run();
  EXPECT_EQ(other.status, 2);
  EXPECT_THAT(other.errors, HasSubstr("file is not a database; name another file with --db\n"));
  const std::string url = "postgresql://user:secret@/name?host=" + folder.Path().string();
  const CommandResult gone = Command({"load", "--db", url, kDesktop}).Run();
  EXPECT_EQ(gone.status, 2);
  EXPECT_THAT(gone.errors,
              HasSubstr("usbinfo-store: the store postgresql://user@/name: connection to server"));
  EXPECT_THAT(gone.errors, ::testing::Not(HasSubstr("secret")));
  EXPECT_EQ(Command({"hosts", "--db", "mysql://x"}).Run().status, 2);
}

}  // namespace usbinfo_test
