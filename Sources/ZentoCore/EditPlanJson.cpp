#include "ZentoCore/EditPlan.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/StyleSpecJson.h"

// Keys are written in ascending order, so a record's fields stand here in another order than in its
// declaration. The functions are found by argument-dependent lookup, hence not in an unnamed
// namespace.

namespace zento {

void encode(JsonWriter& json, const OutputSpec& output)
{
    json.beginObject();
    field(json, "fps", output.fps);
    field(json, "height", output.height);
    field(json, "width", output.width);
    json.endObject();
}

void decode(const JsonObject& object, OutputSpec& output)
{
    object.required("width", output.width);
    object.required("height", output.height);
    object.required("fps", output.fps);
}

void encode(JsonWriter& json, const SpeedSegment& segment)
{
    json.beginObject();
    field(json, "sourceEnd", segment.sourceEnd);
    field(json, "sourceStart", segment.sourceStart);
    field(json, "speed", segment.speed);
    json.endObject();
}

void decode(const JsonObject& object, SpeedSegment& segment)
{
    object.required("sourceStart", segment.sourceStart);
    object.required("sourceEnd", segment.sourceEnd);
    object.required("speed", segment.speed);
}

void encode(JsonWriter& json, const CameraKeyframe& keyframe)
{
    json.beginObject();
    field(json, "center", keyframe.center);
    field(json, "tOut", keyframe.tOut);
    field(json, "zoom", keyframe.zoom);
    json.endObject();
}

void decode(const JsonObject& object, CameraKeyframe& keyframe)
{
    object.required("tOut", keyframe.tOut);
    object.required("center", keyframe.center);
    object.required("zoom", keyframe.zoom);
}

void encode(JsonWriter& json, const CursorSample& sample)
{
    json.beginObject();
    field(json, "pos", sample.pos);
    field(json, "style", sample.style);
    field(json, "t", sample.t);
    json.endObject();
}

void decode(const JsonObject& object, CursorSample& sample)
{
    object.required("t", sample.t);
    object.required("pos", sample.pos);
    object.required("style", sample.style);
}

void encode(JsonWriter& json, const ClickMarker& click)
{
    json.beginObject();
    field(json, "pos", click.pos);
    field(json, "t", click.t);
    json.endObject();
}

void decode(const JsonObject& object, ClickMarker& click)
{
    object.required("t", click.t);
    object.required("pos", click.pos);
}

void encode(JsonWriter& json, const SFXCue& cue)
{
    json.beginObject();
    field(json, "gain", cue.gain);
    field(json, "kind", cue.kind);
    field(json, "tOut", cue.tOut);
    json.endObject();
}

void decode(const JsonObject& object, SFXCue& cue)
{
    object.required("tOut", cue.tOut);
    object.required("kind", cue.kind);
    object.required("gain", cue.gain);
}

void encode(JsonWriter& json, const DuckPoint& point)
{
    json.beginObject();
    field(json, "gainDb", point.gainDb);
    field(json, "tOut", point.tOut);
    json.endObject();
}

void decode(const JsonObject& object, DuckPoint& point)
{
    object.required("tOut", point.tOut);
    object.required("gainDb", point.gainDb);
}

void encode(JsonWriter& json, const MusicPlan& music)
{
    json.beginObject();
    field(json, "duckPoints", music.duckPoints);
    field(json, "fadeIn", music.fadeIn);
    field(json, "fadeOut", music.fadeOut);
    field(json, "file", music.file);
    field(json, "gainDb", music.gainDb);
    field(json, "playDuration", music.playDuration);
    field(json, "sourceOffset", music.sourceOffset);
    json.endObject();
}

void decode(const JsonObject& object, MusicPlan& music)
{
    object.required("file", music.file);
    object.required("gainDb", music.gainDb);
    object.required("sourceOffset", music.sourceOffset);
    object.required("fadeIn", music.fadeIn);
    object.required("fadeOut", music.fadeOut);
    object.required("duckPoints", music.duckPoints);
    object.optional("playDuration", music.playDuration);
}

void encode(JsonWriter& json, const FocusMoment& moment)
{
    json.beginObject();
    field(json, "effectiveSourceTime", moment.effectiveSourceTime);
    field(json, "hold", moment.hold);
    field(json, "kind", moment.kind);
    field(json, "sourceTime", moment.sourceTime);
    field(json, "title", moment.title);
    field(json, "zoom", moment.zoom);
    json.endObject();
}

void decode(const JsonObject& object, FocusMoment& moment)
{
    object.required("sourceTime", moment.sourceTime);
    object.required("kind", moment.kind);
    object.optional("title", moment.title);
    object.required("zoom", moment.zoom);
    object.optional("effectiveSourceTime", moment.effectiveSourceTime);
    object.optional("hold", moment.hold);
}

void encode(JsonWriter& json, const KeystrokeChip& chip)
{
    json.beginObject();
    field(json, "label", chip.label);
    field(json, "tOut", chip.tOut);
    field(json, "tOutEnd", chip.tOutEnd);
    json.endObject();
}

void decode(const JsonObject& object, KeystrokeChip& chip)
{
    object.required("tOut", chip.tOut);
    object.required("tOutEnd", chip.tOutEnd);
    object.required("label", chip.label);
}

void encode(JsonWriter& json, const CaptionChip& chip)
{
    json.beginObject();
    field(json, "tOut", chip.tOut);
    field(json, "tOutEnd", chip.tOutEnd);
    field(json, "text", chip.text);
    json.endObject();
}

void decode(const JsonObject& object, CaptionChip& chip)
{
    object.required("tOut", chip.tOut);
    object.required("tOutEnd", chip.tOutEnd);
    object.required("text", chip.text);
}

void encode(JsonWriter& json, const ChapterMarker& chapter)
{
    json.beginObject();
    field(json, "tOut", chapter.tOut);
    field(json, "title", chapter.title);
    json.endObject();
}

void decode(const JsonObject& object, ChapterMarker& chapter)
{
    object.required("tOut", chapter.tOut);
    object.required("title", chapter.title);
}

void encode(JsonWriter& json, const NarrationPlan& track)
{
    json.beginObject();
    field(json, "file", track.file);
    field(json, "gainDb", track.gainDb);
    field(json, "offset", track.offset);
    json.endObject();
}

void decode(const JsonObject& object, NarrationPlan& track)
{
    object.required("file", track.file);
    object.required("offset", track.offset);
    object.required("gainDb", track.gainDb);
}

void encode(JsonWriter& json, const WebcamPlan& webcam)
{
    json.beginObject();
    field(json, "blurBackground", webcam.blurBackground);
    field(json, "corner", webcam.corner);
    field(json, "enhance", webcam.enhance);
    field(json, "file", webcam.file);
    field(json, "mirror", webcam.mirror);
    field(json, "offset", webcam.offset);
    field(json, "ring", webcam.ring);
    field(json, "roundness", webcam.roundness);
    field(json, "shadow", webcam.shadow);
    field(json, "shape", webcam.shape);
    field(json, "size", webcam.size);
    field(json, "zoom", webcam.zoom);
    json.endObject();
}

void decode(const JsonObject& object, WebcamPlan& webcam)
{
    object.required("file", webcam.file);
    object.orDefault("offset", webcam.offset);
    object.orDefault("corner", webcam.corner);
    object.orDefault("size", webcam.size);
    object.orDefault("shape", webcam.shape);
    object.orDefault("ring", webcam.ring);
    if (!object.orDefault("roundness", webcam.roundness)) {
        webcam.roundness = WebcamPlan::roundnessForShape(webcam.shape);
    }
    object.orDefault("mirror", webcam.mirror);
    object.orDefault("zoom", webcam.zoom);
    object.orDefault("shadow", webcam.shadow);
    object.orDefault("enhance", webcam.enhance);
    object.orDefault("blurBackground", webcam.blurBackground);
}

void encode(JsonWriter& json, const TextCard& card)
{
    json.beginObject();
    field(json, "accentHex", card.accentHex);
    field(json, "design", card.design);
    field(json, "duration", card.duration);
    field(json, "subtitle", card.subtitle);
    field(json, "title", card.title);
    json.endObject();
}

void decode(const JsonObject& object, TextCard& card)
{
    object.required("title", card.title);
    object.optional("subtitle", card.subtitle);
    object.orDefault("duration", card.duration);
    object.orDefault("design", card.design);
    object.orDefault("accentHex", card.accentHex);
}

void encode(JsonWriter& json, const EditPlan& plan)
{
    json.beginObject();
    field(json, "camera", plan.camera);
    field(json, "captions", plan.captions);
    field(json, "chapters", plan.chapters);
    field(json, "clicks", plan.clicks);
    field(json, "cursor", plan.cursor);
    field(json, "endCard", plan.endCard);
    field(json, "focusMoments", plan.focusMoments);
    field(json, "keystrokes", plan.keystrokes);
    field(json, "music", plan.music);
    field(json, "narration", plan.narration);
    field(json, "output", plan.output);
    field(json, "sfx", plan.sfx);
    field(json, "style", plan.style);
    field(json, "systemAudio", plan.systemAudio);
    field(json, "timeRemap", plan.timeRemap);
    field(json, "titleCard", plan.titleCard);
    field(json, "webcam", plan.webcam);
    json.endObject();
}

void decode(const JsonObject& object, EditPlan& plan)
{
    object.required("output", plan.output);
    object.required("style", plan.style);
    object.required("timeRemap", plan.timeRemap);
    object.required("camera", plan.camera);
    object.required("cursor", plan.cursor);
    object.required("clicks", plan.clicks);
    object.required("sfx", plan.sfx);
    object.optional("music", plan.music);
    object.optional("focusMoments", plan.focusMoments);
    object.optional("keystrokes", plan.keystrokes);
    object.optional("captions", plan.captions);
    object.optional("narration", plan.narration);
    object.optional("chapters", plan.chapters);
    object.optional("webcam", plan.webcam);
    object.optional("systemAudio", plan.systemAudio);
    object.optional("titleCard", plan.titleCard);
    object.optional("endCard", plan.endCard);
}

std::string encodePlan(const EditPlan& plan)
{
    constexpr std::size_t kBytesPerSample = 160; // pretty printed, measured on recordings
    JsonWriter json(JsonWriter::Form::Document);
    json.reserve(plan.cursor.size() * kBytesPerSample);
    encode(json, plan);
    return json.takeText();
}

EditPlan decodePlan(std::string_view json)
{
    return decodeDocument<EditPlan>(json);
}

} // namespace zento
