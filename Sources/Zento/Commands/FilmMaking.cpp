#include "Zento/Commands/FilmMaking.h"

#include "Zento/Commands/ProgressBar.h"
#include "Zento/Desktop/DesktopImage.h"
#include "Zento/Model/FilmMaking.h"

#include <iostream>

namespace zento {

namespace {

FilmReports reportsTo(ProgressBar& bar)
{
    return {
        .onProgress = [&bar](FilmProgress progress) { bar.show(progress.fraction()); },
        .onMusicLeftOut = tellMusicLeftOut};
}

} // namespace

void tellMusicLeftOut(const std::string& reason)
{
    std::cerr << "zento: the film has no music: " << reason << '\n';
}

std::filesystem::path makeFilm(
    const SessionBundle& bundle,
    const AppSettings& settings,
    const std::filesystem::path& film,
    const std::stop_token& stop)
{
    ProgressBar bar("Rendering");
    renderFilm(bundle, settings, film, desktopImage(), reportsTo(bar), stop);
    return film;
}

void makeGif(
    const std::filesystem::path& film,
    const std::filesystem::path& gif,
    const std::stop_token& stop)
{
    ProgressBar bar("Writing the GIF");
    renderGif(film, gif, reportsTo(bar), stop);
}

} // namespace zento
