#include "Devices.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace {

void writeExtension(std::ostream& out, const ExtensionReport& extension) {
    out << "    " << extension.name << ": " << extension.state();
    for (const std::string& name : extension.missing)
        out << (name == extension.missing.front() ? ", without " : ", ") << name;
    out << '\n';
}

std::size_t count(const DeviceReport& device, const char* state) {
    return static_cast<std::size_t>(std::ranges::count(device.extensions, state, &ExtensionReport::state));
}

void writeDevice(std::ostream& out, const DeviceReport& device) {
    out << device.name << (device.primary ? " (primary)" : "") << '\n'
        << "  adapter:        " << device.adapter << '\n'
        << "  vendor:         " << device.vendor << " (" << device.vendorKind << ")\n"
        << "  renderer:       " << device.renderer << '\n'
        << "  driver says:    " << device.version << '\n'
        << "  GLSL:           " << device.shadingLanguage << '\n'
        << "  version:        " << device.majorVersion << '.' << device.minorVersion << '\n'
        << "  release:        "
        << (device.releaseVersion < 0 ? std::string("none") : std::to_string(device.releaseVersion)) << '\n'
        << "  additional:     " << device.additionalVersionInfo << '\n'
        << "  texture units:  " << device.textureUnits << '\n'
        << "  capabilities:\n";
    for (const auto& [name, has] : device.capabilities)
        out << "    " << name << ": " << (has ? "yes" : "no") << '\n';
    out << "  versions:\n";
    for (const ExtensionReport& version : device.versions)
        writeExtension(out, version);
    out << "  extensions: " << count(device, "loaded") << " loaded, " << count(device, "incomplete")
        << " incomplete, " << count(device, "unknown") << " unknown\n";
    for (const ExtensionReport& extension : device.extensions)
        writeExtension(out, extension);
}

nlohmann::ordered_json jsonOf(const std::vector<ExtensionReport>& extensions) {
    auto list = nlohmann::ordered_json::array();
    for (const ExtensionReport& extension : extensions) {
        nlohmann::ordered_json item = {{"name", extension.name}, {"state", extension.state()}};
        if (!extension.missing.empty())
            item["missing"] = extension.missing;
        list.push_back(item);
    }
    return list;
}

nlohmann::ordered_json jsonOf(const DeviceReport& device) {
    nlohmann::ordered_json capabilities;
    for (const auto& [name, has] : device.capabilities)
        capabilities[name] = has;
    return {
        {"name", device.name},
        {"adapter", device.adapter},
        {"primary", device.primary},
        {"vendor", device.vendor},
        {"vendorKind", device.vendorKind},
        {"renderer", device.renderer},
        {"versionText", device.version},
        {"shadingLanguageText", device.shadingLanguage},
        {"majorVersion", device.majorVersion},
        {"minorVersion", device.minorVersion},
        {"releaseVersion", device.releaseVersion < 0 ? nlohmann::ordered_json()
                                                     : nlohmann::ordered_json(device.releaseVersion)},
        {"additionalVersionInfo", device.additionalVersionInfo},
        {"textureUnits", device.textureUnits},
        {"capabilities", capabilities},
        {"versions", jsonOf(device.versions)},
        {"extensions", jsonOf(device.extensions)},
    };
}

} // namespace

void writeText(std::ostream& out, const std::vector<DeviceReport>& devices) {
    for (const DeviceReport& device : devices)
        writeDevice(out, device);
}

void writeJson(std::ostream& out, const std::vector<DeviceReport>& devices) {
    auto list = nlohmann::ordered_json::array();
    for (const DeviceReport& device : devices)
        list.push_back(jsonOf(device));
    // A driver's text that is not UTF-8 loses its odd bytes, not the report.
    const auto lenient = nlohmann::ordered_json::error_handler_t::replace;
    out << nlohmann::ordered_json{{"devices", list}}.dump(2, ' ', false, lenient) << '\n';
}
