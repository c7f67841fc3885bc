// Numbers of the module's resources and commands, for resource scripts and C++: macros, because both can read them.
#pragma once

// Dialogs
#define IDD_ABOUT 500
#define IDD_COMPRESSOR 1001
#define IDD_EQ 3001
#define IDD_DITHER 6000
#define IDD_GATE 7000

// The logo strip at the top of every dialog
#define IDC_LOGO_STRIP 2

// About box
#define IDC_ABOUT_PRODUCT 501
#define IDC_ABOUT_VERSION 502
#define IDC_ABOUT_RIGHTS 503

// Compressor page
#define IDC_COMPRESSOR_INPUT_GAIN 2004
#define IDC_COMPRESSOR_INPUT_GAIN_TEXT 2005
#define IDC_COMPRESSOR_THRESHOLD_EDIT 2006
#define IDC_COMPRESSOR_AMOUNT_EDIT 2007
#define IDC_COMPRESSOR_THRESHOLD 2008
#define IDC_COMPRESSOR_AMOUNT 2009
#define IDC_COMPRESSOR_ATTACK 2010
#define IDC_COMPRESSOR_ATTACK_EDIT 2011
#define IDC_COMPRESSOR_RELEASE 2012
#define IDC_COMPRESSOR_RELEASE_EDIT 2013
#define IDC_COMPRESSOR_INPUT_METER 2014
#define IDC_COMPRESSOR_REDUCTION_METER 2015
#define IDC_COMPRESSOR_THRESHOLD_LABEL 2016
#define IDC_COMPRESSOR_AMOUNT_LABEL 2017
#define IDC_COMPRESSOR_ATTACK_LABEL 2018
#define IDC_COMPRESSOR_RELEASE_LABEL 2019
#define IDC_COMPRESSOR_INPUT_GAIN_LABEL 2020
#define IDC_COMPRESSOR_OUTPUT_GAIN_LABEL 2021
#define IDC_COMPRESSOR_REDUCTION_LABEL 2022
#define IDC_COMPRESSOR_OUTPUT_METER 2023
#define IDC_COMPRESSOR_OUTPUT_GAIN_TEXT 2024
#define IDC_COMPRESSOR_OUTPUT_GAIN 2025
#define IDC_COMPRESSOR_AUTO_GAIN 2026
#define IDC_COMPRESSOR_SMOOTH_SATURATION 2028

// EQ page; the graph takes the place of a label in the template, the tabs have none there
#define IDC_EQ_WIDTH 4001
#define IDC_EQ_GAIN 4002
#define IDC_EQ_FREQUENCY 4003
#define IDC_EQ_GAIN_EDIT 4007
#define IDC_EQ_WIDTH_EDIT 4008
#define IDC_EQ_FREQUENCY_EDIT 4009
#define IDC_EQ_GRAPH 4010
#define IDC_EQ_FIRST_SCALE_LABEL 4011
#define IDC_EQ_FIRST_GAIN_LABEL 4022
#define IDC_EQ_LAST_SCALE_LABEL 4024
#define IDC_EQ_ENABLED 4030
#define IDC_EQ_MODE 4035
#define IDC_EQ_FREQUENCY_LABEL 4036
#define IDC_EQ_WIDTH_LABEL 4037
#define IDC_EQ_GAIN_LABEL 4038
#define IDC_EQ_TABS 4042
#define IDC_EQ_BAND_BOX 4043

// Dither page
#define IDC_DITHER_DEPTH_LABEL 6002
#define IDC_DITHER_DEPTH 6003
#define IDC_DITHER_TYPE_LABEL 6004
#define IDC_DITHER_TYPE 6005
#define IDC_DITHER_SHAPING_LABEL 6006
#define IDC_DITHER_SHAPING 6007

// Gate page
#define IDC_GATE_ATTACK 7002
#define IDC_GATE_RELEASE 7003
#define IDC_GATE_THRESHOLD_TEXT 7005
#define IDC_GATE_THRESHOLD 7008
#define IDC_GATE_RELEASE_EDIT 7009
#define IDC_GATE_ATTACK_EDIT 7010
#define IDC_GATE_THRESHOLD_LABEL 7011
#define IDC_GATE_ATTACK_LABEL 7012
#define IDC_GATE_RELEASE_LABEL 7013

// Commands of every page: preset k has ID_PRESET_FIRST + k - 1; a filter notifies its page by ID_FILTER_CHANGED
#define ID_FILTER_CHANGED 32700
#define ID_PRESET_FIRST 40500
#define ID_PRESET_LAST 40999
#define ID_HELP 41000
#define ID_ABOUT 41001
#define ID_BYPASS 41003
#define ID_EQ_BYPASS 41004

// What the EQ page's graph sends its notifications as
#define ID_EQ_GRAPH 41003

// Context menu of a band on the EQ graph
#define IDR_EQ_BAND_MENU 5010
#define ID_EQ_BAND_TOGGLE 5011
#define ID_EQ_BAND_RESET 5012
#define ID_EQ_BAND_LOW_SHELF 5013
#define ID_EQ_BAND_BAND 5014
#define ID_EQ_BAND_HIGH_SHELF 5015

// Context menu of the level meter; each item's help text is the string of the same number
#define IDR_METER_MENU 162
#define ID_METER_RANGE_12_DB 40001
#define ID_METER_RANGE_24_DB 40002
#define ID_METER_RANGE_42_DB 40003
#define ID_METER_RANGE_60_DB 40004
#define ID_METER_RANGE_78_DB 40005
#define ID_METER_RANGE_90_DB 40006
#define ID_METER_RANGE_120_DB 40007
#define ID_METER_RANGE_138_DB 40008
#define ID_METER_SHOW_LABELS 40010
#define ID_METER_RESET_CLIP 40011
#define ID_METER_HOLD_PEAKS 40012
#define ID_METER_HOLD_VALLEYS 40013

// Texts of the level meter for screen readers
#define IDS_METER_RESET_CLIP 520
#define IDS_METER_CLIPPED 521

// Page titles
#define IDS_COMPRESSOR_TITLE 1000
#define IDS_EQ_TITLE 3000
#define IDS_DITHER_TITLE 6001
#define IDS_GATE_TITLE 7001

// Texts of every page; IDS_ABOUT_TITLE is a format for the product name
#define IDS_PRODUCT_NAME 510
#define IDS_ABOUT_TITLE 511
#define IDS_STRIP_ABOUT 512
#define IDS_STRIP_HELP 513
#define IDS_MENU_PRESETS 514
#define IDS_MENU_HELP 515
#define IDS_MENU_ABOUT 516
#define IDS_STRIP_BYPASS 517

// EQ page: list entries, the first one's number plus the mode less 1; what the label of the third slider reads
#define IDS_EQ_MODE_FIRST 3001
#define IDS_EQ_BANDWIDTH_LABEL 3004
#define IDS_EQ_ROLLOFF_LABEL 3005

// List entries of the dither page: the first one's number plus the setting
#define IDS_DITHER_DEPTH_FIRST 6010
#define IDS_DITHER_TYPE_FIRST 6020
#define IDS_DITHER_SHAPING_FIRST 6030

// Pictures of the logo strip, in two colourings
#define IDB_LOGO 24019
#define IDB_LOGO_BACKGROUND 24020
#define IDB_ALTERNATE_LOGO 24021
#define IDB_ALTERNATE_LOGO_BACKGROUND 24022

// The bypass toggle: off, on, pressed side by side. Image lists keep their colours only with LR_CREATEDIBSECTION.
#define IDB_BYPASS_DISABLED 5000
#define IDB_BYPASS_HOT 5001
#define IDB_BYPASS 5002

// EQ nodes: enabled, disabled, marked enabled, marked disabled one below the other
#define IDB_EQ_NODES 5003

// The pointing hand
#define IDC_HAND_CURSOR 4
