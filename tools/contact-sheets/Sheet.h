#pragma once

#include "ZentoImaging/Canvas.h"

#include <filesystem>
#include <string>
#include <vector>

namespace zento {

/// Labelled tiles in rows.
class Sheet {
public:
    Sheet(int tileWidth, int tileHeight, int columns);

    /// A picture of any size; it is made smaller to fit its tile, never larger.
    void add(std::string label, Canvas picture);

    void save(const std::filesystem::path& file) const;

private:
    struct Tile {
        std::string label;
        Canvas picture;
    };

    int m_tileWidth;
    int m_tileHeight;
    int m_columns;
    std::vector<Tile> m_tiles;
};

} // namespace zento
