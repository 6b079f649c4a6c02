#include "ZentoIntelligence/SystemLanguageModel.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/Json/JsonFields.h"
#include "ZentoCore/Text.h"
#include "ZentoIntelligence/LanguageWire.h"
#include "ZentoNet/HttpClient.h"

#include <algorithm>
#include <optional>

namespace zento {

namespace {

constexpr int kOk = 200;
constexpr int kNotYet = 503; // while llama.cpp's server loads its model

HttpRequest requestOf(std::string url, std::chrono::milliseconds limit)
{
    HttpRequest request;
    request.url = std::move(url);
    request.timeout = limit;
    request.redirects = Redirects::Refuse;
    request.proxies = Proxies::None;
    request.mostBytes = std::size_t{1} << 20;
    return request;
}

/// What a server answers at once; nothing if it is not there.
std::optional<HttpResponse> answerOf(const std::string& url, const std::stop_token& stop)
{
    constexpr std::chrono::seconds kProbe{2};
    try {
        return fetch(requestOf(url, kProbe), stop);
    } catch (const Error&) {
        return std::nullopt;
    }
}

} // namespace

std::vector<std::string> SystemLanguageModel::usualAddresses()
{
    return {"http://127.0.0.1:11434", "http://127.0.0.1:8080", "http://127.0.0.1:1234"};
}

std::string serverAddress(std::string_view host)
{
    std::string address(trimmed(host));
    if (address.find("://") == std::string::npos)
        address.insert(0, "http://");
    const auto cut = [&address](std::string_view end) {
        if (address.ends_with(end))
            address.resize(address.size() - end.size());
    };
    cut("/");
    cut("/v1"); // as the makers of clients ask for it
    return address;
}

SystemLanguageModel SystemLanguageModel::find(
    const LanguageModelChoice& choice,
    const std::stop_token& stop,
    const std::vector<std::string>& addresses)
{
    const bool isNamed = !trimmed(choice.host).empty();
    SystemLanguageModel best;
    for (const std::string& address :
         isNamed ? std::vector{serverAddress(choice.host)} : addresses) {
        SystemLanguageModel found = probed(address, choice.model, stop);
        if (stop.stop_requested())
            return {};
        if (found.availability() == Availability::Available)
            return found;
        if (best.availability() == Availability::NoServer)
            best = std::move(found);
    }
    return best;
}

SystemLanguageModel SystemLanguageModel::probed(
    const std::string& address, const std::string& wanted, const std::stop_token& stop)
{
    SystemLanguageModel found;
    found.m_address = address;
    if (const auto tags = answerOf(address + "/api/tags", stop);
        tags && tags->status == kOk && found.takeAnswer(Wire::Ollama, tags->body, wanted))
        return found;
    const auto models = answerOf(address + "/v1/models", stop);
    if (models && models->status == kNotYet)
        found.m_availability = Availability::ModelLoading;
    else if (models && models->status == kOk)
        found.takeAnswer(Wire::Completions, models->body, wanted);
    return found;
}

/// False if the answer is none of a language server.
bool SystemLanguageModel::takeAnswer(Wire wire, const std::string& json, const std::string& wanted)
{
    try {
        m_models = wire == Wire::Ollama ? OllamaWire::models(json) : CompletionsWire::models(json);
    } catch (const Error&) {
        return false;
    }
    m_wire = wire;
    m_availability = m_models.empty() ? Availability::ModelMissing : Availability::Available;
    if (std::ranges::find(m_models, wanted) != m_models.end())
        m_model = wanted;
    else if (!m_models.empty())
        m_model = m_models.front();
    return true;
}

std::string SystemLanguageModel::respond(
    const LanguageRequest& request,
    const std::stop_token& stop,
    std::chrono::milliseconds timeLimit) const
{
    if (m_availability != Availability::Available)
        throw Error(ErrorCode::kNoLanguageModel, "There is no language model to ask.");
    const bool isOllama = m_wire == Wire::Ollama;
    HttpRequest post =
        requestOf(m_address + (isOllama ? OllamaWire::kPath : CompletionsWire::kPath), timeLimit);
    post.headers = {{"Content-Type", "application/json"}};
    post.body = isOllama ? OllamaWire::question(m_model, request)
                         : CompletionsWire::question(m_model, request);
    const HttpResponse response = fetch(post, stop);
    if (response.status != kOk)
        throw Error(
            ErrorCode::kNoUsableAnswer,
            m_address + " refused with the status " + std::to_string(response.status));
    try {
        return isOllama ? OllamaWire::answer(response.body)
                        : CompletionsWire::answer(response.body);
    } catch (const Error& error) {
        throw Error(ErrorCode::kNoUsableAnswer, "The answer of " + m_address + ": " + error.what());
    }
}

} // namespace zento
