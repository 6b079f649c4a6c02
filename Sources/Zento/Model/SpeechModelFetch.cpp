#include "Zento/Model/SpeechModelFetch.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoNet/HttpClient.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <array>

namespace zento {

namespace {

constexpr int kRangeBeyondEnd = 416; // there is nothing left to send

constexpr std::array<SpeechModelOffer, 4> kOffers = {{
    {"base.en-q5_1", "English", 57, "d26d7ce5a1b6e57bea5d0431b9c20ae49423c94a"},
    {"base-q5_1", "Any language", 57, "a3733eda680ef76256db5fc5dd9de8629e62c5e7"},
    {"small.en-q5_1",
     "English, slower and better",
     181,
     "20f54878d608f94e4a8ee3ae56016571d47cba34"},
    {"small-q5_1",
     "Any language, slower and better",
     181,
     "6fe57ddcfdd1c6b07cdcc73aaf620810ce5fc771"},
}};

std::string sha1Of(const std::filesystem::path& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        return {};
    }
    return hash.result().toHex().toStdString();
}

std::uint64_t sizeOf(const std::filesystem::path& path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    return error ? 0 : size;
}

Error refusal(std::string_view reason)
{
    return {ErrorCode::kDownloadFailed, "The speech model was not fetched: " + std::string(reason)};
}

} // namespace

std::span<const SpeechModelOffer> speechModelOffers()
{
    return kOffers;
}

void fetchSpeechModel(
    const SpeechModelOffer& offer,
    const std::string& site,
    const std::filesystem::path& to,
    const std::function<void(double)>& onProgress,
    const std::stop_token& stop)
{
    constexpr std::uint64_t kMostBytes = std::uint64_t{2} << 30;
    makeFolder(to.parent_path());
    const std::filesystem::path part = to.parent_path() / (std::string(offer.id) + ".part");
    const std::uint64_t there = sizeOf(part);
    HttpRequest request;
    request.url = site + "/ggml-" + std::string(offer.id) + ".bin";
    request.mostBytes = kMostBytes;
    const auto tell = [&](const HttpProgress& progress) {
        if (progress.total > 0 && onProgress) {
            const auto got = static_cast<double>(there + progress.received);
            onProgress(std::min(got / static_cast<double>(there + progress.total), 1.0));
        }
    };
    const HttpResponse response = download(request, part, there, tell, stop);
    const bool isSent = response.status >= 200 && response.status < 300;
    const bool isThere = response.status == kRangeBeyondEnd && there > 0;
    if (!isSent && !isThere) {
        throw refusal("the server answered with " + std::to_string(response.status) + ".");
    }
    if (sha1Of(part) != offer.sha1) {
        std::error_code ignored;
        std::filesystem::remove(part, ignored); // continuing it would never make it whole
        throw refusal("what came is not the model that is offered.");
    }
    replaceFile(part, to);
}

} // namespace zento
