#!/bin/sh
# Lists the records of a download: list-records.sh FILE
set -eu
od -An -v -tu1 -w1 "$1" | awk '
    BEGIN {
        split("0002 EF_ICC 0005 EF_IC 0501 EF_Application_Identification C100 EF_Card_Certificate " \
              "C101 EF_Card_Sign_Certificate C108 EF_CA_Certificate C109 EF_Link_Certificate " \
              "0520 EF_Identification 050E EF_Card_Download 0521 EF_Driving_License_Info " \
              "0502 EF_EventsData 0503 EF_FaultsData 0504 EF_Driver_Activity_Data 0505 EF_Vehicles_Used " \
              "0506 EF_Places 0507 EF_Current_Usage 0508 EF_Control_Activity_Data 0509 EF_Card_Download " \
              "050A EF_Calibration 050D EF_Company_Activity_Data " \
              "0522 EF_Specific_Conditions 0523 EF_Vehicle_Units_Used 0524 EF_GNSS_Places " \
              "0525 EF_Application_Identification_V2 0526 EF_Places_Authentication " \
              "0527 EF_GNSS_Places_Authentication 0528 EF_Border_Crossing " \
              "0529 EF_Load_Unload_Operations 0530 EF_Load_Type_Entries 0531 EF_Calibration_Add_Data", words, " ")
        for (i = 1; i in words; i += 2)
            name[words[i]] = words[i + 1]
        kind[0] = "data, generation 1"; kind[1] = "signature, generation 1"
        kind[2] = "data, generation 2"; kind[3] = "signature, generation 2"
        printf "%8s  %-4s  %-32s %-24s %6s\n", "offset", "FID", "EF", "record", "bytes"
    }
    left > 0 { left--; offset++; next }
    {
        header[field++] = $1
        offset++
        if (field == 5) {
            field = 0
            fid = sprintf("%02X%02X", header[0], header[1])
            left = header[3] * 256 + header[4]
            ef = fid == "C100" && header[2] == 2 ? "EF_MA_Certificate" : name[fid]
            printf "%8d  %-4s  %-32s %-24s %6d\n", offset - 5, fid, ef, kind[header[2]], left
            records++
        }
    }
    END {
        printf "%d records\n", records
        if (left > 0 || field > 0) {
            print "the last record is cut short"
            exit 1
        }
    }'
