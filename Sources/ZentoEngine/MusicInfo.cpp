#include "ZentoEngine/MusicInfo.h"

#include "ZentoEngine/BeatGridJson.h"

namespace zento::EditPlanner {

void decode(const JsonObject& object, MusicInfo& music)
{
    object.required("file", music.file);
    object.required("grid", music.grid);
    object.required("start", music.start);
    object.required("end", music.end);
}

MusicInfo decodeMusicInfo(std::string_view json)
{
    return decodeDocument<MusicInfo>(json);
}

} // namespace zento::EditPlanner
