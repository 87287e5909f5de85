#pragma once

#include "platform/Alert.h"

/// Shows an alert in a window of its own and brings that to the front. Returns at once. Main thread only.
void showAlert(Alert alert);
