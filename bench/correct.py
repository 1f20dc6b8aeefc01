#!/usr/bin/env python3
"""Prints the seconds of processor time that an operation of Python takes: correct.py correct|copy."""

import sys
import time
import timeit

import norvex

STREAM = {"codec_id": "aac", "sample_rate": 48000, "sample_format": "s16", "channel_layout": "stereo", "bitrate": 100000}
COUNT = 20000

helper = norvex.helper("audio_codec", "aac")
operation = {"correct": lambda: helper.correct(STREAM), "copy": lambda: dict(STREAM)}[sys.argv[1]]
print(timeit.timeit(operation, timer=time.process_time, number=COUNT) / COUNT)
