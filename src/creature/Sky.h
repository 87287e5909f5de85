#pragma once

/// The weather scene.
enum class Sky { clearDay, clearNight, cloudy, rain, snow, fog, storm };
