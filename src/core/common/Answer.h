#pragma once

// How a message box was answered.
enum class Answer { Ok, Yes, No, Cancel };
