#ifndef TOOLS_DIAG_EVIDENCE_PLACES_H
#define TOOLS_DIAG_EVIDENCE_PLACES_H

#include "Hardware.h"

#include <filesystem>
#include <string>

/** Where the evidence lies; tests look elsewhere. */
struct Places
{
    std::string processes = "/proc";
    std::string sharedMemory = "/dev/shm";
    std::string temporaryFiles = "/tmp";
    std::string leds = hardware::LedsDirectory;
    /** Folders with the settings of the login manager, the strongest first. */
    std::string loginSettings[3] = {"/etc/systemd", "/run/systemd", "/usr/lib/systemd"};

    std::string coldMarker() const
    {
        return temporaryFiles / std::filesystem::path(hardware::ColdRestartMarker).filename();
    }
};

#endif
