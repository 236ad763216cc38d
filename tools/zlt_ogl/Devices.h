#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

/// What a driver says of one version or extension.
struct ExtensionReport {
    std::string name;
    bool known = false;               // to the library
    std::vector<std::string> missing; // entry points that the driver names and doesn't have

    std::string state() const { return !known ? "unknown" : missing.empty() ? "loaded" : "incomplete"; }
};

/// A display device and its driver.
struct DeviceReport {
    std::string name;
    std::string adapter;
    bool primary = false;
    std::string vendor;
    std::string vendorKind; // the library's
    std::string renderer;
    std::string version; // the driver's own text
    std::string shadingLanguage;
    unsigned majorVersion = 0;
    unsigned minorVersion = 0;
    int releaseVersion = -1; // -1: none
    std::string additionalVersionInfo;
    unsigned textureUnits = 0;
    std::vector<std::pair<std::string, bool>> capabilities;
    std::vector<ExtensionReport> versions;   // of OpenGL, 1.2 and later
    std::vector<ExtensionReport> extensions; // of GL, then of WGL, in the driver's order
};

/// Asks the driver of each display device. The library is started.
std::vector<DeviceReport> reportDevices();

void writeText(std::ostream& out, const std::vector<DeviceReport>& devices);
void writeJson(std::ostream& out, const std::vector<DeviceReport>& devices);
