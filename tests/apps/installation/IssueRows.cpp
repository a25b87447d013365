#include "SampleRows.h"

std::vector<SampleRow> const& issueRows() {
    static std::vector<SampleRow> const rows = {
        {"Parameter Issue: pid=10, did=[EncodingType=24, CtrlSurfaceID=0, MEIdType=1, "
         "eMEBusIDType=0~, data=[type=UInt16, value=5~, flag=absolute",
         {},
         {"FID: id=DO.BUS.SHOW, data=[BUS=ME2.PGM, SOURCE=5~",
          "Context: name=ME2.UNUSED.SOURCE, value=5", "FID: id=DO.SPLIT.NONE, data=[KEY=ME2.0~"}},
        {"Parameter Issue: pid=10, did=[EncodingType=24, CtrlSurfaceID=0, MEIdType=0, "
         "eMEBusIDType=8~, data=[type=UInt16, value=16~, flag=absolute",
         {},
         {"FID: id=DO.BUS.SHOW, data=[BUS=ME1.KEY3.CUT, SOURCE=16~",
          "Context: name=ME1.KEY3.FRONT.CUT.SOURCE, value=16",
          "FID: id=DO.SPLIT.SHOW, data=[KEY=ME1.KEY3~"}},
        {"Parameter Issue: pid=11, did=[EncodingType=1b, SourceIDType=a~, data=[type=Bool, "
         "value=true~, flag=absolute",
         {},
         {"SID: id=TALLY.SRC10, value=ON"}},
        {"Parameter Issue: pid=40, did=[EncodingType=18, AuxVideoVideoKeyBusIDType=3, "
         "eEMemLevel=0, SuiteIDType=0~, data=[type=UInt16, value=5~, flag=absolute",
         {},
         {"FID: id=DO.BUS.SHOW, data=[BUS=AUX4, SOURCE=5~"}},
        {"Parameter Issue: pid=20, did=[EncodingType=08, MEIdType=1, KeyerIDType=3, eEMemLevel=0~, "
         "data=[type=Bool, value=false~, flag=absolute",
         {},
         {"SID: id=ME2.KEY4.ON, value=OFF"}},
        {"Parameter Issue: pid=21, did=[EncodingType=08, MEIdType=0, KeyerIDType=1, eEMemLevel=0~, "
         "data=[type=Int16, value=2~, flag=absolute",
         {},
         {"SID: id=ME1.KEY2.PRIORITY, value=2",
          "Context: name=ME1.TRANSI.KEY2.PRIORITY.PGM, value=2",
          "FID: id=DO.PRIORITY.SHOW, data=[ME=ME1~"}},
        {"Parameter Issue: pid=22, did=[EncodingType=08, MEIdType=0, KeyerIDType=1, eEMemLevel=0~, "
         "data=[type=Percent, value=33.3333~, flag=absolute",
         {},
         {"TID: id=ME1.KEY2.CLIP, parameter=33.3%"}},
        {"Parameter Issue: pid=23, did=[EncodingType=08, MEIdType=0, KeyerIDType=1, eEMemLevel=0~, "
         "data=[type=Degree, value=90~, flag=absolute",
         {},
         {"TID: id=ME1.KEY2.HUE, parameter=90.0\xb0"}},
        {"Parameter Issue: pid=30, did=[EncodingType=03, MEIdType=0, eMEPartitionType=0, "
         "eEMemLevel=0~, data=[type=UInt16, value=4095~, flag=absolute",
         {},
         {"SID: id=ME1.LEVER.POSITION, value=4095"}},
        {"Parameter Issue: pid=31, did=[EncodingType=03, MEIdType=1, eMEPartitionType=0, "
         "eEMemLevel=0~, data=[type=UInt16, value=25~, flag=absolute",
         {},
         {"SID: id=ME2.RATE.FIELDS, value=25", "Context: name=ME2.TRANSI.RATE, value=25",
          "FID: id=DO.RATE.SHOW, data=[ME=ME2~"}},
        {"Parameter Issue: pid=32, did=[EncodingType=03, MEIdType=0, eMEPartitionType=0, "
         "eEMemLevel=0~, data=[type=UInt16, value=17~, flag=absolute",
         {},
         {"Context: name=ME1.TRANSI.BGD.NEXT, value=ON", "SID: id=ME1.NEXT.BGD, value=ON",
          "Context: name=ME1.TRANSI.KEY1.NEXT, value=OFF", "SID: id=ME1.NEXT.KEY1, value=OFF",
          "Context: name=ME1.TRANSI.KEY2.NEXT, value=OFF", "SID: id=ME1.NEXT.KEY2, value=OFF",
          "Context: name=ME1.TRANSI.KEY3.NEXT, value=OFF", "SID: id=ME1.NEXT.KEY3, value=OFF",
          "Context: name=ME1.TRANSI.KEY4.NEXT, value=ON", "SID: id=ME1.NEXT.KEY4, value=ON"}},
        {"Parameter Issue: pid=34, did=[EncodingType=03, MEIdType=1, eMEPartitionType=0, "
         "eEMemLevel=0~, data=[type=Bool, value=true~, flag=absolute",
         {},
         {"SID: id=ME2.AUTO.RUNNING, value=ON"}},
        {"Parameter Issue: pid=60, did=[EncodingType=35, eEMemLevel=0, SuiteIDType=0~, "
         "data=[type=UInt16, value=65535~, flag=absolute",
         {},
         {"FID: id=DO.MEMORY.SHOW, data=[REG=NONE~"}},
        {"Parameter Issue: pid=61, did=[EncodingType=3e, eSrcMachineObjectType=0, "
         "InstanceIDType=2, eEMemLevel=0~, data=[type=Float, value=10.2~, flag=absolute",
         {},
         {"Context: name=CLIP3.LENGTH, value=10.2",
          "Context: name=EMEM.CLIP3.LATEST.EFFDUR, value=10.2",
          "FID: id=DO.CLIP.SHOW, data=[CLIP=3~"}},
        {"Parameter Issue: pid=62, did=[EncodingType=3e, eSrcMachineObjectType=0, "
         "InstanceIDType=2, eEMemLevel=0~, data=[type=Int32, value=250~, flag=absolute",
         {},
         {"Context: name=CLIP3.POSITION, value=250", "FID: id=DO.CLIP.SHOW, data=[CLIP=3~"}},
        {"Parameter Issue: pid=50, did=[EncodingType=01, eSystemComponents=1, SuiteIDType=0~, "
         "data=[type=UInt16, value=50~, flag=absolute",
         {},
         {"Context: name=VIDEO.FRAMERATE, value=50", "SID: id=VIDEO.FRAMERATE, value=50",
          "FID: id=DO.RATE.SHOW, data=[ME=ME1~", "FID: id=DO.RATE.SHOW, data=[ME=ME2~",
          "FID: id=DO.CLIP.SHOW, data=[CLIP=1~", "FID: id=DO.CLIP.SHOW, data=[CLIP=2~",
          "FID: id=DO.CLIP.SHOW, data=[CLIP=3~", "FID: id=DO.CLIP.SHOW, data=[CLIP=4~"}},
        {"Parameter Issue: pid=51, did=[EncodingType=01, eSystemComponents=1, SuiteIDType=0~, "
         "data=[type=String, value=~, flag=absolute",
         {},
         {"TID: id=SHOW.NAME, parameter=", "SID: id=SHOW.UNNAMED, value=ON"}},
        {"List Issue: lid=23, did=[EncodingType=35, eEMemLevel=0, SuiteIDType=0~, number=1, "
         "item=[itemId=13, status=1, nextItemId=0, param=[name=Is Valid, data=[type=Bool, "
         "value=true~~, param=[name=Register Comment, data=[type=String, value=~~, "
         "param=[name=Register Id, data=[type=UInt32, value=12~~, param=[name=Register Name, "
         "data=[type=String, value=Opener, night~~~",
         {},
         {"SID: id=MEMORY.USED.12, value=ON", "TID: id=MEMORY.NAME.12, parameter=Opener, night",
          "Context: name=MEMORY12.NAME, value=Opener, night",
          "FID: id=DO.MEMORY.NAMES.SHOW, data=[~"}},
        {"List Issue: lid=23, did=[EncodingType=35, eEMemLevel=0, SuiteIDType=0~, number=1, "
         "item=[itemId=13, status=3, nextItemId=0~",
         {},
         {"SID: id=MEMORY.USED.12, value=OFF", "TID: id=MEMORY.NAME.12, parameter=",
          "Context: name=MEMORY12.NAME, value=", "FID: id=DO.MEMORY.NAMES.SHOW, data=[~"}},
        {"List Issue: lid=6, did=[EncodingType=3e, eSrcMachineObjectType=0, InstanceIDType=0, "
         "eEMemLevel=0~, number=1, item=[itemId=7, status=1, nextItemId=0, param=[name=Clip Name, "
         "data=[type=String, value=bin/a, b~~, param=[name=MarkIn Time, data=[type=UInt32, "
         "value=0~~~",
         {},
         {"Context: name=DO.STACK.ENTRY, value=1>7::bin/a, b::-1",
          "FID: id=DO.STACK.INSERT, data=[~"}},
        {"List Issue: lid=6, did=[EncodingType=3e, eSrcMachineObjectType=0, InstanceIDType=0, "
         "eEMemLevel=0~, number=1, item=[itemId=7, status=2, nextItemId=9, param=[name=Clip Name, "
         "data=[type=String, value=c~~, param=[name=MarkIn Time, data=[type=UInt32, value=0~~~",
         {},
         {"Context: name=DO.STACK.ENTRY, value=1>7::c::9", "FID: id=DO.STACK.MODIFY, data=[~"}},
        {"List Issue: lid=6, did=[EncodingType=3e, eSrcMachineObjectType=0, InstanceIDType=0, "
         "eEMemLevel=0~, number=1, item=[itemId=7, status=3, nextItemId=0~",
         {},
         {"Context: name=DO.STACK.ENTRY, value=1>7::gone::0", "FID: id=DO.STACK.DELETE, data=[~"}},
        {"List Issue: lid=32, did=[EncodingType=62, SuiteIDType=0~, number=1, item=[itemId=3, "
         "status=1, nextItemId=0, param=[name=Aspect Ratio, data=[type=UInt16, value=0~~, "
         "param=[name=Camera Id, data=[type=UInt16, value=3~~, param=[name=Camera Name, "
         "data=[type=String, value=Cam, 3~~, param=[name=Color Bars Enabled, data=[type=Bool, "
         "value=false~~, param=[name=Connected, data=[type=Bool, value=true~~, param=[name=Filter, "
         "data=[type=UInt16, value=0~~, param=[name=Green Tally, data=[type=Bool, value=false~~, "
         "param=[name=Yellow Tally, data=[type=Bool, value=false~~~",
         {},
         {"TID: id=CAMERA3.NAME, parameter=Cam, 3", "SID: id=CAMERA3.CONNECTED, value=ON"}},
        {"List Issue: lid=32, did=[EncodingType=62, SuiteIDType=0~, number=1, item=[itemId=3, "
         "status=3, nextItemId=0~",
         {},
         {"TID: id=CAMERA3.NAME, parameter=", "SID: id=CAMERA3.CONNECTED, value=OFF"}},
        {"Parameter Issue: pid=99, did=[EncodingType=01, eSystemComponents=1, SuiteIDType=0~, "
         "data=[type=UInt16, value=50~, flag=absolute",
         {},
         {}},
    };
    return rows;
}
