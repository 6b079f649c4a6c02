#include "Zento/Desktop/HttpFetch.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>
#include <utility>

namespace zento {

namespace {

constexpr int kTimeout = 60'000;     // milliseconds
constexpr qint64 kLongest = 1 << 20; // bytes of a document worth reading

} // namespace

UpdateCheck::Fetch httpFetch()
{
    return [](const QUrl& url, std::function<void(std::optional<QByteArray>)> done) {
        auto* const network = new QNetworkAccessManager; // for this request alone, one a week
        QNetworkRequest request(url);
        request.setAttribute(
            QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
        request.setTransferTimeout(kTimeout);
        QNetworkReply* const reply = network->get(request);
        QObject::connect(
            reply, &QNetworkReply::finished, network, [network, reply, done = std::move(done)] {
                const bool isWhole = reply->error() == QNetworkReply::NoError;
                done(isWhole ? std::optional(reply->read(kLongest)) : std::nullopt);
                network->deleteLater(); // and the reply with it
            });
    };
}

} // namespace zento
