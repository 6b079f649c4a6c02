#pragma once

#include "TestSupport/HttpServer.h"
#include "ZentoIntelligence/SystemLanguageModel.h"

#include <string>

namespace zento::test {

/// As a server writes it into an answer.
inline std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text)
        result += c == '"' || c == '\\' ? std::string{'\\', c} : c == '\n' ? "\\n" : std::string{c};
    return result + '"';
}

inline std::string json(const std::string& body)
{
    return httpAnswer("200 OK", "application/json", body);
}

inline std::string notFound()
{
    return httpAnswer("404 Not Found", "text/plain", "404 page not found");
}

/// A server in Ollama's form with one model; `answer` is what it says to a question, whole.
inline HttpServer::Answer ollama(HttpServer::Answer answer)
{
    return [answer = std::move(answer)](const HttpServer::Connection& connection) {
        if (connection.request().starts_with("GET /api/tags "))
            connection.send(json(
                R"({"models":[{"name":"small:1b","model":"small:1b","size":815319791,"details":{"family":"x"}}]})"));
        else if (connection.request().starts_with("POST /api/chat "))
            answer(connection);
        else
            connection.send(notFound());
    };
}

/// The same that says `content`.
inline HttpServer::Answer ollamaSaying(const std::string& content)
{
    return ollama([content](const HttpServer::Connection& connection) {
        connection.send(json(
            R"({"model":"small:1b","created_at":"2026-03-09T14:05:33Z","message":{"role":"assistant","content":)"
            + quoted(content)
            + R"(},"done_reason":"stop","done":true,"total_duration":5191566416})"));
    });
}

/// A server of chat completions.
inline HttpServer::Answer completionsSaying(const std::string& content, const std::string& reason)
{
    return [content, reason](const HttpServer::Connection& connection) {
        if (connection.request().starts_with("GET /v1/models "))
            connection.send(json(
                R"({"object":"list","data":[{"id":"/models/a.gguf","object":"model"},{"id":"b","object":"model"}]})"));
        else if (connection.request().starts_with("POST /v1/chat/completions "))
            connection.send(json(
                R"({"id":"chatcmpl-1","choices":[{"index":0,"finish_reason":)" + quoted(reason)
                + R"(,"message":{"role":"assistant","content":)" + quoted(content)
                + R"(}}],"usage":{"total_tokens":10}})"));
        else
            connection.send(httpAnswer(
                "404 Not Found",
                "application/json",
                R"({"error":{"code":404,"message":"File Not Found","type":"not_found_error"}})"));
    };
}

inline SystemLanguageModel modelAt(const HttpServer& server)
{
    return SystemLanguageModel::find({.host = server.url(), .model = {}});
}

} // namespace zento::test
