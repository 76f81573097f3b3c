#include <gmock/gmock.h>
#include <stdlib.h>

#include "shellint/places.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {
namespace {

class DrivesTest : public testing::Test {
 protected:
  /// A block device of the kernel, such as "pci0/ata1/sda/sda1", with its number.
  void Device(const std::string& path, const std::string& number, const char* removable = "0") {
    temp.Put("devices/" + path + "/removable", std::string(removable) + "\n");
    std::filesystem::create_directories(temp / "numbers");
    std::filesystem::create_directories(temp / "names");
    std::filesystem::create_symlink(temp / ("devices/" + path), temp / ("numbers/" + number));
    std::filesystem::create_symlink(temp / ("devices/" + path), temp / "names" / Path(path).filename());
  }
  void Label(const std::string& name, const std::string& device) {
    std::filesystem::create_directories(temp / "labels");
    std::filesystem::create_symlink("../names/" + device, temp / ("labels/" + name));
  }

  TempFolder temp;
  PosixFiles files;
};

TEST_F(DrivesTest, AreWhatAPersonWouldNameAndOfTheirKind) {
  Device("pci0/ata1/sda/sda1", "8:1");
  temp.Put("devices/pci0/ata1/sda/sda1/partition", "1\n");
  Device("pci0/usb2/sdb/sdb1", "8:17");
  Device("pci0/sr0", "11:0", "1");
  Device("mmc/mmcblk0", "179:0");
  temp.Put("devices/mmc/mmcblk0/device/type", "SD\n");
  Device("mmc/mmcblk1", "179:8");
  temp.Put("devices/mmc/mmcblk1/device/type", "MMC\n");
  Device("virtual/dm-0", "254:0");
  std::filesystem::create_directories(temp / "devices/virtual/dm-0/slaves");
  std::filesystem::create_symlink("../../../pci0/usb2/sdb/sdb1", temp / "devices/virtual/dm-0/slaves/sdb1");
  Label("ROOT", "sda1");
  Label("My\\x20Stick\\xff", "sdb1");
  const Path mounts = temp.Put("mountinfo",
                               "1 0 0:5 / /proc rw - proc proc rw\n"
                               "2 0 8:1 / / rw shared:1 - ext4 /dev/sda1 rw\n"
                               "3 0 0:9 / /run/user/1000/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw\n"
                               "4 0 8:17 / /media/u/My\\040Stick\\134 rw - vfat /dev/sdb1 rw\n"
                               "5 0 8:1 /home /srv/bind rw - ext4 /dev/sda1 rw\n"
                               "6 0 11:0 / /media/u/disc ro - iso9660 /dev/sr0 ro\n"
                               "7 0 0:40 / /mnt/share rw - cifs //server/share rw\n"
                               "8 0 0:41 / /home/u/remote rw - fuse.sshfs u@host: rw\n"
                               "9 0 7:1 / /snap/core/1 ro - squashfs /dev/loop1 ro\n"
                               "10 0 0:42 / /mnt/ram rw - tmpfs none rw\n"
                               "11 0 0:43 / /tmp rw - tmpfs none rw\n"
                               "12 0 0:44 / /net rw - autofs systemd-1 rw\n"
                               "13 0 179:0 / /run/media/u/CARD rw - exfat /dev/mmcblk0 rw\n"
                               "14 0 254:0 / /mnt/a rw - ext4 /dev/mapper/crypt rw\n"
                               "15 0 0:45 / /mnt/a rw - nfs4 host:/x rw\n"
                               "16 0 254:0 / /mnt/crypt rw - ext4 /dev/mapper/crypt rw\n"
                               "17 0 179:8 / /mnt/built-in rw - ext4 /dev/mmcblk1 rw\n"
                               "torn line\n");
  DriveList list(files, {.mountInfo = mounts,
                         .deviceNumbers = temp / "numbers",
                         .deviceNames = temp / "names",
                         .labels = temp / "labels"});
  const DriveSurvey survey = list.Read();
  std::vector<std::string> drives;
  for (const Drive& drive : survey.drives)
    drives.push_back(std::to_string(static_cast<int>(drive.kind)) + " " + drive.root.native() + " " +
                     drive.label);
  EXPECT_THAT(drives, testing::ElementsAre("3 / ROOT", "2 /media/u/My Stick\\ My Stick\xff",
                                           "5 /media/u/disc ", "4 /mnt/share //server/share",
                                           "4 /home/u/remote u@host:", "6 /mnt/ram ", "2 /run/media/u/CARD ",
                                           "4 /mnt/a host:/x", "2 /mnt/crypt ", "3 /mnt/built-in "));
  EXPECT_THAT(survey.waitingRoots,
              testing::IsSupersetOf({Path("/net"), Path("/mnt/share"), Path("/media/u/disc")}));
}

TEST_F(DrivesTest, PlacesAreTheUsersOwnElseTheHomeButNotTwice) {
  std::filesystem::create_directories(temp / "Desktop");
  std::filesystem::create_directories(temp / "Bureau \"neu\"");
  ::setenv("XDG_CONFIG_HOME", (temp / "config").c_str(), 1);
  const std::string home = ::getenv("HOME") == nullptr ? "" : ::getenv("HOME");
  ::setenv("HOME", temp.Where().c_str(), 1);
  const std::string usual = (temp / "Desktop").native(), own = (temp / "Bureau \"neu\"").native();
  const std::string at = temp.Where().native();
  const std::vector<std::array<std::string, 3>> table = {
      {"", usual, at},
      {"XDG_DESKTOP_DIR=\"$HOME/Bureau \\\"neu\\\"\"\n", own, at},
      {"#XDG_DESKTOP_DIR=\"$HOME/x\"\n XDG_DOCUMENTS_DIR=\"" + usual + "/\"\n", usual, ""},
      {"XDG_DESKTOP_DIR=\"$HOME/\"\nXDG_DOCUMENTS_DIR=\"$HOME\"\n", at + "/", ""},
      {"XDG_DESKTOP_DIR=\"$HOME/gone\"\nXDG_DESKTOP_DIR_X=\"/\"\n", usual, at},
      {"XDG_DESKTOP_DIR=\"relative\"", usual, at},
      {"XDG_DESKTOP_DIR=\"", usual, at},
  };
  for (const auto& [text, desktop, documents] : table) {
    temp.Put("config/user-dirs.dirs", text);
    MachinePlaces places(files);
    EXPECT_EQ(places.Desktop(), desktop) << text;
    EXPECT_EQ(places.Documents(), documents) << text;
  }
  ::setenv("HOME", home.c_str(), 1);
  ::unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace tarnel::test
