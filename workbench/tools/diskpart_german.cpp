#include "workbench/tools/diskpart_german.h"

#include <array>
#include <string_view>

namespace torvane::bench {
namespace {

struct Words {
    std::string_view english;
    std::string_view german;
};

// Longer ones before those that they begin with. In code page 850, 0x84 is a-umlaut, 0x81 u-umlaut and 0x94 o-umlaut.
constexpr std::array kWords = {
    Words{"On computer: ", "Auf Computer: "},
    Words{"Current Read-only State : ", "Aktueller schreibgesch\x81tzter Zustand: "},
    Words{"Read-only  : ", "Schreibgesch\x81tzt      : "},
    Words{"Boot Disk  : ", "Startdatentr\x84ger       : "},
    Words{"Hibernation File Disk  : ", "Ruhezustandsdatei-Datentr\x84ger: "},
    Words{"Pagefile Disk  : ", "Auslagerungsdatei-Datentr\x84ger: "},
    Words{"Crashdump Disk  : ", "Absturzabbild-Datentr\x84ger: "},
    Words{"Clustered Disk  : ", "Clusterdatentr\x84ger      : "},
    Words{": Yes\r\n", ": Ja\r\n"},
    Words{": No\r\n", ": Nein\r\n"},
    Words{"Disk attributes set successfully.", "Die Datentr\x84gerattribute wurden erfolgreich festgelegt."},
    Words{"Disk attributes cleared successfully.", "Die Datentr\x84gerattribute wurden erfolgreich gel\x94scht."},
    Words{"\r\nDisk ", "\r\nDatentr\x84ger "},
    Words{" is now the selected disk.", " ist jetzt der derzeit gew\x84hlte Datentr\x84ger."},
    Words{"The disk you specified is not valid.", "Der angegebene Datentr\x84ger ist ung\x81ltig."},
    Words{"There is no disk selected.\r\nPlease select a disk and try again.",
          "Es ist kein Datentr\x84ger ausgew\x84hlt.\r\nW\x84hlen Sie einen Datentr\x84ger aus, und wiederholen Sie "
          "den Vorgang."},
    Words{"There is no disk selected.", "Es ist kein Datentr\x84ger ausgew\x84hlt."},
    Words{"DiskPart succeeded in cleaning the disk.", "Der Datentr\x84ger wurde bereinigt."},
    Words{"Virtual Disk Service error:", "Fehler des Diensts f\x81r virtuelle Datentr\x84ger:"},
    Words{"Clean is not allowed on the disk containing the current boot,\r\n"
          "system, pagefile, crashdump or hibernation volume.",
          "Der Datentr\x84ger mit dem aktuellen Start-, System-, Auslagerungsdatei-,\r\n"
          "Absturzabbild- oder Ruhezustandsvolume kann nicht bereinigt werden."},
    Words{"The operation is not allowed on the disk: a volume on it is in use.",
          "Der Vorgang ist auf dem Datentr\x84ger nicht zul\x84ssig: Ein Volume wird verwendet."},
    Words{"DiskPart has encountered an error: The media is write protected.",
          "DiskPart-Fehler: Das Medium ist schreibgesch\x81tzt."},
    Words{"See the System Event Log for more information.",
          "Weitere Informationen finden Sie in dem Systemereignisprotokoll."},
    Words{"DiskPart successfully scrubbed the mount point settings in the system.",
          "Die Bereitstellungspunkteinstellungen im System wurden erfolgreich bereinigt."},
    Words{"Automatic mounting of new volumes enabled.", "Die automatische Bereitstellung neuer Volumes ist aktiviert."},
    Words{"Automatic mounting of new volumes disabled.",
          "Die automatische Bereitstellung neuer Volumes ist deaktiviert."},
};

} // namespace

std::string diskpartInGerman(std::string text) {
    for (const Words& words : kWords) {
        for (std::size_t at = text.find(words.english); at != std::string::npos;
             at = text.find(words.english, at + words.german.size())) {
            text.replace(at, words.english.size(), words.german);
        }
    }
    return text;
}

} // namespace torvane::bench
