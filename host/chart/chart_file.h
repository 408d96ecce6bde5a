// A chart as a picture file. A Failure says what is wrong.
#pragma once

#include <string>

#include "host/chart/chart_model.h"

// The name must be one with ".png", ".svg" or ".pdf" at its end.
void RequirePictureName(const std::string& path);
// A PNG has no more pixels than kOrvikPicturePixels.
void RequirePictureSize(const std::string& path, SIZE size);
// Replaces what is there, as a whole. False: the picture is so small that it lacks something without saying so.
bool WriteChart(ChartModel& model, const std::string& path, SIZE size);
// To the error stream, where no font of the machine has some letters of the chart: they are boxes in the picture.
void TellLettersWithoutFont(const ChartModel& model);
