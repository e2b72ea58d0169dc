// SPDX-License-Identifier: MIT
// The page of one track: everything that it shows stands in it.
import { showTrack } from './trackView.js';

const { track } = JSON.parse(document.getElementById('data').textContent);
showTrack(document.getElementById('view'), track, { audio: null });
