#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Checks the scoring and the reading of answers on cases that can be worked out by hand."""
import json
import os
import tempfile
import unittest

import mido

import charts
import figures
import modules
import programs
import write_tables


class TempoTest(unittest.TestCase):
    def test_four_percent_is_near_and_five_is_not(self):
        # 4 % of 100 are 4 BPM.
        self.assertEqual(figures.score_tempo(104.0, 100.0, True)['acc1'], 1.0)
        self.assertEqual(figures.score_tempo(105.0, 100.0, True)['acc1'], 0.0)

    def test_half_and_triple_are_another_level_of_the_same_pulse(self):
        for found in (50.0, 300.0, 200.0, 33.3):
            with self.subTest(found=found):
                values = figures.score_tempo(found, 100.0, True)
                self.assertEqual((values['acc1'], values['acc2'], values['fine']), (0.0, 1.0, 1.0))

    def test_two_thirds_is_another_pulse(self):
        self.assertEqual(figures.score_tempo(150.0, 100.0, True)['acc2'], 0.0)

    def test_one_percent_is_counted_at_the_level_that_was_found(self):
        # 2 BPM are 1 % of 200, 3 BPM are 1.5 % of it.
        self.assertEqual(figures.score_tempo(202.0, 100.0, True)['fine'], 1.0)
        self.assertEqual(figures.score_tempo(203.0, 100.0, True)['fine'], 0.0)

    def test_an_open_level_is_not_judged(self):
        self.assertNotIn('acc1', figures.score_tempo(100.0, 100.0, False))

    def test_no_tempo_is_a_wrong_tempo(self):
        for nothing in (None, 0.0):
            self.assertEqual(sum(figures.score_tempo(nothing, 100.0, True).values()), 0.0)


class BeatsTest(unittest.TestCase):
    truth = [0.5 * index for index in range(61)]

    def test_the_same_beats_score_one(self):
        self.assertEqual(figures.score_beats(self.truth, self.truth), {'f': 1.0, 'amlt': 1.0})

    def test_beats_sixty_milliseconds_late_count_and_eighty_do_not(self):
        for late, expected in ((0.06, 1.0), (0.08, 0.0)):
            found = [beat + late for beat in self.truth]
            self.assertEqual(figures.score_beats(found, self.truth)['f'], expected)

    def test_every_second_beat_is_two_thirds_and_tracked_at_its_level(self):
        # From 5 s on 51 true beats; 26 found, all right: 2 * 26 / (51 + 26).
        values = figures.score_beats(self.truth[::2], self.truth)
        self.assertAlmostEqual(values['f'], 52 / 77)
        self.assertEqual(values['amlt'], 1.0)

    def test_the_off_beat_is_wrong_but_tracked(self):
        values = figures.score_beats([beat + 0.25 for beat in self.truth[:-1]], self.truth)
        self.assertEqual(values['f'], 0.0)
        self.assertGreater(values['amlt'], 0.95)

    def test_beats_outside_the_known_stretch_are_not_asked_for(self):
        found = self.truth + [31.0 + index for index in range(20)]
        self.assertEqual(figures.score_beats(found, self.truth)['f'], 1.0)

    def test_no_beats_score_nothing(self):
        self.assertEqual(figures.score_beats([], self.truth), {'f': 0.0, 'amlt': 0.0})

    def test_bars_on_the_second_beat_score_nothing(self):
        self.assertEqual(figures.score_bars(self.truth[1::4], self.truth[::4])['bars'], 0.0)
        self.assertEqual(figures.score_bars(self.truth[::4], self.truth[::4])['bars'], 1.0)


class KeyTest(unittest.TestCase):
    def test_related_keys_count_in_part(self):
        for found, weighted in (('C major', 1.0), ('G major', 0.5), ('A minor', 0.3),
                                ('C minor', 0.2), ('D major', 0.0), (None, 0.0)):
            with self.subTest(found=found):
                values = figures.score_key(found, 'C major')
                self.assertEqual(values['weighted'], weighted)
                self.assertEqual(values['key'], float(found == 'C major'))

    def test_two_names_of_a_note_are_one(self):
        self.assertEqual(figures.score_key('Db minor', 'C# minor')['key'], 1.0)


class QuestionsTest(unittest.TestCase):
    def test_only_what_is_asked_and_known_is_scored(self):
        truth = {'bpm': 100.0, 'level_known': True, 'key': 'C major'}
        self.assertEqual(set(figures.score(truth, {'bpm': 100.0}, ('bpm',))),
                         {'acc1', 'acc2', 'fine'})
        self.assertEqual(figures.score(truth, {'beats': []}, ('beats',)), {})


class AnswersTest(unittest.TestCase):
    def test_numbers_are_found_in_what_is_said(self):
        self.assertEqual(programs.read_first_number('122.22 bpm\n', 60)['bpm'], 122.22)
        self.assertIsNone(programs.read_first_number('unknown tempo\n', 60)['bpm'])
        self.assertEqual(
            programs.read_detected_rate('SoundStretch v2.3\nDetected BPM rate 97.5\n', 60)['bpm'],
            97.5)

    def test_the_tempo_that_lasts_longest_is_the_tempo(self):
        # 100 BPM for 1 and 7 of 10 seconds, 120 for 2.
        text = '0: 100.0 100.00 bpm\n44100: 120.0 120.00 bpm\n132300: 100.0 100.00 bpm\n'
        self.assertEqual(programs.read_longest_tempo(text, 10.0)['bpm'], 100.0)
        self.assertIsNone(programs.read_longest_tempo('', 10.0)['bpm'])

    def test_keys_are_numbered_from_c_major(self):
        for number, key in ((1, 'C major'), (12, 'B major'), (13, 'C minor'), (24, 'B minor'),
                            (25, None), (0, None)):
            self.assertEqual(programs.read_longest_key(f'0: {number} name\n', 10.0)['key'], key)

    def test_the_first_beat_of_a_bar_is_the_one_counted_one(self):
        answer = programs.read_counted_beats('44100: 4\n88200: 1\n', 10.0)
        self.assertEqual(answer, {'beats': [1.0, 2.0], 'bars': [2.0]})


class ModulesTest(unittest.TestCase):
    @staticmethod
    def rows(ticks, tempo, count=128, length=64):
        """The rows as a player counts them: a tick lasts 2.5 s divided by the tempo number."""
        seconds = ticks * 2.5 / tempo
        return [(round(index * seconds * modules.RATE), index % length, length, ticks, tempo)
                for index in range(count)]

    def test_rows_of_six_ticks_have_the_tempo_of_the_clock(self):
        bpm, beats, bars = modules.beats_of(self.rows(6, 125))
        self.assertEqual((len(beats), len(bars)), (32, 8))
        self.assertAlmostEqual(bpm, 125.0, 2)
        self.assertAlmostEqual(beats[1], 0.48, 3)
        self.assertAlmostEqual(bars[1], 1.92, 3)

    def test_rows_of_three_ticks_are_counted_in_eights(self):
        self.assertAlmostEqual(modules.beats_of(self.rows(3, 140))[0], 140.0, 2)

    def test_rows_of_five_ticks_make_a_faster_beat(self):
        # 4 * 5 = 20 ticks instead of 24.
        self.assertAlmostEqual(modules.beats_of(self.rows(5, 125))[0], 150.0, 2)

    def test_modules_without_certain_beats_are_refused(self):
        change = self.rows(6, 125)
        change[70] = change[70][:4] + (130,)
        jump = self.rows(6, 125, 66) + [(frame + 10 * 44100, row, 64, 6, 125)
                                        for frame, row, _, _, _ in self.rows(6, 125)]
        for why, rows in (('four ticks', self.rows(4, 125)), ('clock', change), ('gap', jump),
                          ('nine beats', self.rows(6, 125, 144, 36)),
                          ('short', self.rows(6, 125, 60))):
            with self.subTest(why=why), self.assertRaises(modules.Refusal):
                modules.beats_of(rows)


class ChartsTest(unittest.TestCase):
    def write(self, ticks, tempi=(500000,)):
        """A chart of 480 ticks a quarter with notes at these ticks."""
        midi = mido.MidiFile(ticks_per_beat=480)
        part = mido.MidiTrack()
        midi.tracks.append(part)
        for tempo in tempi:
            part.append(mido.MetaMessage('set_tempo', tempo=tempo))
        for before, tick in zip([0] + ticks, ticks):
            part.append(mido.Message('note_on', note=96, velocity=100, time=tick - before))
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        path = os.path.join(folder.name, 'notes.mid')
        midi.save(path)
        return path

    def test_beats_reach_from_the_first_note_to_the_last(self):
        # Sixteenths from the third quarter to the sixth: beats at 1.0, 1.5, 2.0, 2.5 s.
        bpm, beats = charts.beats_of(self.write(list(range(960, 2500, 120))))
        self.assertEqual((bpm, beats), (120.0, [1.0, 1.5, 2.0, 2.5]))

    def test_charts_that_are_not_on_their_beats_are_refused(self):
        with self.assertRaises(charts.Refusal):
            charts.beats_of(self.write(list(range(960, 2500, 103))))
        with self.assertRaises(charts.Refusal):
            charts.beats_of(self.write([480, 960], (500000, 400000)))


class TablesTest(unittest.TestCase):
    def test_the_documents_show_the_stored_results(self):
        top = os.path.dirname(os.path.abspath(__file__)) + '/../..'
        with open(f'{top}/tools/compare_programs/results.json', encoding='utf-8') as file:
            results = json.load(file)
        for document, tables in (('docs/comparison.md', set(write_tables.TABLES)),
                                 ('README.md', {'short'})):
            with open(f'{top}/{document}', encoding='utf-8') as file:
                text = file.read()
            self.assertEqual(tables, {line.split()[2] for line in text.splitlines()
                                      if line.startswith('<!-- table ')})
            self.assertEqual(write_tables.fill(text, results), text)

    def test_a_changed_figure_changes_the_table(self):
        track = {'kind': 'songs', 'name': 'a', 'feel': 'steady', 'seconds': 1800.0, 'bpm': 100.0,
                 'programs': {'Beat Atlas': {'acc1': 1.0, 'acc2': 1.0, 'fine': 0.0, 'f': 0.5,
                                             'amlt': 0.5, 'cpu': 2.0, 'bpm': 101.0}}}
        results = {'tracks': [track]}
        self.assertIn('| Beat Atlas | 1 of 1 | 1 of 1 | 0 of 1 |',
                      write_tables.tempo_table(results))
        # 2 s for half an hour.
        self.assertIn('| Beat Atlas | 4.0 | 1.00 |', write_tables.speed_table(results))
        track['programs']['Beat Atlas']['acc1'] = 0.0
        self.assertIn('| Beat Atlas | 0 of 1 |', write_tables.tempo_table(results))


if __name__ == '__main__':
    unittest.main()
