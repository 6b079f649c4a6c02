#pragma once

class QObject;
class QQmlEngine;

namespace zento {

class Appearance;

/// Makes an engine ready for the module "Zento": its import path, its pictures and, as `App`, the
/// application's model, which must outlive the engine.
void prepareEngine(QQmlEngine& engine, QObject* app);

/// The engine's appearance, once it is prepared.
Appearance* appearance(QQmlEngine& engine);

} // namespace zento
