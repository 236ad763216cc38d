#include "intercept/Annotations.h"

#include "intercept/CallCapture.h"

#include <cstring>

namespace ZLT::Interception {

namespace {

// In the order of annotationNames.
enum Place : std::size_t {
    PushDebugGroup,
    PushDebugGroupKHR,
    PopDebugGroup,
    PopDebugGroupKHR,
    PushGroupMarkerEXT,
    PopGroupMarkerEXT,
    DebugMessageInsert,
    DebugMessageInsertARB,
    DebugMessageInsertKHR,
    InsertEventMarkerEXT,
    ObjectLabel,
    ObjectLabelKHR,
    LabelObjectEXT,
};
extern Annotation annotations[std::size(annotationNames)];

template <class... Parameters>
void callReal(Place place, Parameters... parameters) {
    reinterpret_cast<void (*)(Parameters...)>(annotations[place].real)(parameters...);
}

// Longer texts are an error, or none was meant.
constexpr std::size_t longestText = 1 << 16;

std::size_t lengthOf(const char* text, int length, bool isZeroTerminated) {
    if (!text)
        return 0;
    return isZeroTerminated ? strnlen(text, longestText)
                            : std::min(static_cast<std::size_t>(length), longestText);
}
// KHR_debug says a text that ends with zero by a negative length, the older extensions by 0.
std::size_t lengthOf(const char* text, int length) { return lengthOf(text, length, length < 0); }
std::size_t lengthOfExt(const char* text, int length) { return lengthOf(text, length, length <= 0); }

template <Place place>
void pushGroup(unsigned int source, unsigned int id, int length, const char* message) {
    captureGroup(message ? message : "", lengthOf(message, length));
    callReal(place, source, id, length, message);
}

template <Place place>
void popGroup() {
    callReal(place);
    captureGroup(nullptr, 0);
}

void pushMarker(int length, const char* marker) {
    captureGroup(marker ? marker : "", lengthOfExt(marker, length));
    callReal(PushGroupMarkerEXT, length, marker);
}

void insertMarker(int length, const char* marker) {
    captureMarker(marker, lengthOfExt(marker, length));
    callReal(InsertEventMarkerEXT, length, marker);
}

template <Place place>
void insertMessage(unsigned int source, unsigned int type, unsigned int id, unsigned int severity, int length,
                   const char* message) {
    captureMarker(message, lengthOf(message, length));
    callReal(place, source, type, id, severity, length, message);
}

template <Place place>
void label(unsigned int kind, unsigned int name, int length, const char* text) {
    callReal(place, kind, name, length, text);
    captureLabel(kind, name, text, lengthOf(text, length));
}

void labelExt(unsigned int kind, unsigned int name, int length, const char* text) {
    callReal(LabelObjectEXT, kind, name, length, text);
    captureLabel(kind, name, text, lengthOfExt(text, length));
}

template <class Function>
RealFunction plain(Function* function) {
    return reinterpret_cast<RealFunction>(function);
}

Annotation annotations[] = {{plain(pushGroup<PushDebugGroup>), nullptr},
                            {plain(pushGroup<PushDebugGroupKHR>), nullptr},
                            {plain(popGroup<PopDebugGroup>), nullptr},
                            {plain(popGroup<PopDebugGroupKHR>), nullptr},
                            {plain(pushMarker), nullptr},
                            {plain(popGroup<PopGroupMarkerEXT>), nullptr},
                            {plain(insertMessage<DebugMessageInsert>), nullptr},
                            {plain(insertMessage<DebugMessageInsertARB>), nullptr},
                            {plain(insertMessage<DebugMessageInsertKHR>), nullptr},
                            {plain(insertMarker), nullptr},
                            {plain(label<ObjectLabel>), nullptr},
                            {plain(label<ObjectLabelKHR>), nullptr},
                            {plain(labelExt), nullptr}};

} // namespace

Annotation* annotationNamed(std::string_view name) {
    const auto* const found = std::ranges::find(annotationNames, name);
    return found == std::end(annotationNames) ? nullptr : &annotations[found - std::begin(annotationNames)];
}

} // namespace ZLT::Interception
