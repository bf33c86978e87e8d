// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// How a message box was answered.
enum class Answer { Ok, Yes, No, Cancel };
