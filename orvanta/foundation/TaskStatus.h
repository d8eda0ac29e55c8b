#pragma once
// TaskStatus: where a Task is in its life.

namespace Orvanta {

enum TaskStatus {
    TaskIdle = 0,     // not started, or reset
    TaskRunning = 1,  // begun
    TaskEnded = 2,    // completed or ended normally
    TaskKilled = 3,   // ended after killTask
};

}  // namespace Orvanta
