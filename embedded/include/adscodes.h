// Codes of the host's plain-function interface: how a call ended and what a result buffer
// holds.
#pragma once

// How a call ended.
#define RTNONE 5000     // no result
#define RTREAL 5001     // real number
#define RTPOINT 5002    // 2D point, in rpoint[0] and rpoint[1]
#define RTSHORT 5003    // 16-bit integer
#define RTANG 5004      // angle
#define RTSTR 5005      // text
#define RTENAME 5006    // entity name
#define RTPICKS 5007    // selection set
#define RTORINT 5008    // orientation
#define RT3DPOINT 5009  // 3D point
#define RTLONG 5010     // 32-bit integer
#define RTVOID 5014     // blank symbol
#define RTLB 5016       // list begin
#define RTLE 5017       // list end
#define RTDOTE 5018     // dotted pair
#define RTNIL 5019      // nil
#define RTDXF0 5020     // group code 0
#define RTT 5021        // T
#define RTRESBUF 5023   // a result buffer itself

#define RTNORM 5100    // the call succeeded
#define RTERROR -5001  // the call failed
#define RTCAN -5002    // the user cancelled
#define RTREJ -5003    // the host rejected the call
#define RTFAIL -5004   // the link to the host failed
#define RTKWORD -5005  // a keyword came instead of a value
