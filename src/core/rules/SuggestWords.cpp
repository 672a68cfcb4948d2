#include "SuggestWords.h"

namespace fb {

namespace {

// Canonical word, its abbreviations, then after "|" the words that mean the
// same. The words of business data: parties, documents, amounts, stock,
// dates and periods, places, people, and the parts every field name is made
// of (number, code, type, status...).
const char* const kWords[] = {
    // the parts of every name
    "number = no nr num nbr nmbr numb nro",
    "identifier = id ident idn | identification",
    "code = cd cde",
    "key = ky",
    "name = nm nme nam",
    "description = desc descr dsc dscr | designation",
    "text = txt",
    "type = typ tp ty | kind",
    "category = cat catg categ",
    "class = cls clas | classification",
    "group = grp",
    "status = stat sts stts | state",
    "flag = flg | indicator ind",
    "level = lvl lev",
    "sequence = seq sqn sq",
    "position = pos posn",
    "line = ln lin",
    "version = ver vers vsn",
    "revision = rev",
    "reference = ref refr",
    "value = val vl",
    "count = cnt ct",
    "total = tot ttl",
    "amount = amt amnt amount",
    "quantity = qty qnty qnt quant",
    "percent = pct perc pcnt prct | percentage",
    "average = avg | mean",
    "minimum = min mn",
    "maximum = max mx",
    "high = hi | upper",
    "low = lo | lower",
    "default = dflt def",
    "comment = cmt cmnt | remark note",
    "message = msg",
    "language = lang lng",
    "unit = unt",
    "measure = meas msr",
    "source = src",
    "target = tgt trg",
    "previous = prev prv | prior former",
    "next = nxt",
    "current = cur",
    "first = fst frst 1st",
    "last = lst",
    "primary = prim pri | main principal",
    "secondary = sec scnd",
    "alternative = alt alternate",
    "internal = intern",
    "external = ext extern",
    "active = act actv",
    "start = strt | begin",
    "end = | finish",
    "stop = stp",
    "valid = vld",
    "effective = eff effect",
    "expiry = expir | expiration",
    "result = res rslt | outcome",
    "reason = rsn | cause",
    "method = meth mthd",
    "mode = md",
    "size = sz",
    "dimension = dim dimn",
    "length = len lgth lngth",
    "width = wd wdth",
    "height = ht hgt hght",
    "weight = wt wgt wght",
    "volume = vol",
    "temperature = tmp temp",
    "diameter = diam dia",
    // dates and periods
    "date = dt dte",
    "time = tm tim",
    "datetime = dttm | timestamp tstamp",
    "year = yr yy yyyy",
    "month = mth mo mnth mm",
    "week = wk",
    "day = dy dd",
    "hour = hr hrs",
    "minute = mins",
    "second = secs",
    "period = prd perd",
    "duration = dur",
    "birth = brth",
    "death = dth",
    "created = crt crtd cre creat | creation entered",
    "modified = mod modif chg chgd changed | updated amended",
    "deleted = del",
    "posted = pst pstd",
    // parties and people
    "customer = cust cus cst cstmr | client buyer",
    "supplier = supp suppl supl splr | vendor seller",
    "debtor = dbtr deb",
    "creditor = crdtr cred",
    "person = pers prsn | individual",
    "employee = emp empl emplye | staff worker",
    "manager = mgr mngr",
    "user = usr",
    "contact = cntct cont",
    "partner = prtnr ptnr",
    "company = comp cmp co cmpny | firm enterprise",
    "organization = org orgn organisation",
    "department = dept dpt",
    "division = div",
    "branch = brch brnch",
    "gender = gndr | sex",
    "age = ag",
    "title = ttl",
    "surname = | lastname familyname",
    "forename = | firstname givenname",
    "nationality = nat natl | citizenship",
    "marital = mar",
    "religion = relig",
    "ethnicity = ethn",
    // places
    "address = addr adr adrs",
    "street = str",
    "city = cty | town",
    "postal = post pcode zip zipcode postcode plz",
    "country = ctry cntry cntr",
    "region = rgn reg",
    "province = prov",
    "county = cnty",
    "location = loc lctn | place",
    "site = ste",
    "warehouse = wh whs whse wrhs",
    "plant = plnt",
    "residence = | domicile",
    "origin = orig",
    "destination = dest dst",
    "telephone = tel tele ph phn phone",
    "mobile = mob | cellphone",
    "fax = fx",
    "email = mail eml",
    "website = web url",
    // documents and business
    "account = acc acct accnt acnt",
    "ledger = ldgr",
    "journal = jrnl jnl",
    "invoice = inv invc",
    "order = ord ordr",
    "purchase = purch prch pur",
    "sales = sls | sale",
    "delivery = dlv dlvr deliv dlvy",
    "shipment = shp shpmt ship | shipping",
    "receipt = rcpt rcp",
    "payment = pmt pymt paymt pay",
    "price = prc pr",
    "cost = cst",
    "discount = disc dsct",
    "tax = tx",
    "currency = curr ccy crcy",
    "rate = rt",
    "exchange = exch xch",
    "balance = bal",
    "credit = cr cred",
    "debit = dr deb",
    "budget = bdgt",
    "contract = cntrct",
    "project = proj prj",
    "transaction = trans trx txn trn",
    "transfer = xfer xfr",
    "document = doc docu",
    "batch = btch",
    "item = itm | article",
    "product = prod prd",
    "material = mat matl mtrl",
    "stock = stk | inventory",
    "quality = qual ql",
    "inspection = insp",
    "bank = bnk",
    "service = svc srv serv srvc",
    "request = req rqst",
    "approval = appr aprv",
    "history = hist hst",
    "registration = regis regn",
    "stage = stg | phase",
    "grade = grd",
};

// Initialisms and abbreviations that stand for several words.
const char* const kInitialisms[] = {
    "uom = unit",
    "um = unit",
    "dob = birth date",
    "po = purchase order",
    "sku = stock unit",
    "gl = general ledger",
    "ar = account receivable",
    "ap = account payable",
    "vat = tax",
    "bom = bill material",
    "eta = arrival date",
    "ssn = social security number",
    "tin = tax identifier",
    "ytd = year date",
    "mtd = month date",
    "fy = fiscal year",
    "bu = business unit",
    "cc = cost center",
};

// Words related without meaning the same, with their similarity.
const char* const kRelated[] = {
    "0.6 identifier code key number",
    "0.6 quantity count amount",
    "0.6 value amount",
    "0.6 total amount sum",
    "0.6 price cost rate",
    "0.6 description text name comment",
    "0.6 type category class group",
    "0.55 status flag",
    "0.6 customer debtor account partner",
    "0.6 supplier creditor partner",
    "0.55 person employee contact user member",
    "0.65 size dimension length",
    "0.6 percent rate ratio share proportion",
    "0.7 date datetime day",
    "0.7 time datetime hour",
    "0.55 date time",
    "0.6 start effective valid",
    "0.6 end stop expiry",
    "0.6 location site place warehouse plant address",
    "0.55 country nationality region",
    "0.6 postal address street city",
    "0.6 company organization branch division department",
    "0.6 destination target",
    "0.6 modified created",
    "0.6 document reference",
    "0.6 invoice receipt",
    "0.6 order request contract",
    "0.6 item product material",
    "0.55 service product",
    "0.6 method mode",
    "0.55 current active",
    "0.6 telephone mobile fax",
    "0.6 website email",
    "0.6 period duration",
};

// Words that carry no meaning in a name.
const char* const kStopWords = "a an the of and or in on at by for with is are was this that be any its";
// Words that say little alone.
const char* const kWeakWords = "to from per into out up as if other all some non not "
                               // units that qualify a measure: height_cm is a height
                               "cm mm km kg mg ml lb lbs oz usd eur";

// A general word list: words often found in business data names that must
// never be taken for abbreviations of longer words (age is not short for
// agent) and that split compound names (itemid, dischtime).
const char* const kGeneralWords =
    "all area arrival attribute base bill book call case cell center centre charge check child "
    "close closed cycle data daily detail due entry event family field file final fiscal "
    "form free general give given hand home index info information initial input insurance job label "
    "land last left limit link list local lot mark market member model monthly net new "
    "node note notes object official old open output owner page paid parent part party path plan "
    "point pool post power print private public rank ratio receivable payable record report "
    "right risk role route rule run scale score security sheet short side sign single social state "
    "step store summary system table tag task team term track trade usage "
    "use view zone share sum proportion count group order ";

// The words that name the kind of a field's value.
const char* const kClassWords =
    "identifier number code key name description text date time datetime value amount "
    "quantity count type status flag percent rate total sequence";
const char* const kKeyWords = "identifier number code key";

// Words that end compound names written as one word (chargetime, itemtype):
// only these split off an unknown head.
const char* const kCompoundTails =
    "time date datetime type code name number unit score value status flag count text year month week "
    "group class level amount price rate line list mode size";
// Short words that end such compounds only after a longer head (sampleid).
const char* const kShortCompoundTails = "id no nr";

} // namespace

QString StemWord(const QString& word)
{
    QString w = word.toLower();
    if (w.size() <= 3)
        return w;
    if (w.endsWith(u"ies") && w.size() > 4)
        w = w.left(w.size() - 3) + u'y';
    else if (w.endsWith(u"sses"))
        w.chop(2);
    else if (w.endsWith(u's') && !w.endsWith(u"ss") && !w.endsWith(u"us") && !w.endsWith(u"is"))
        w.chop(1);
    if (w.endsWith(u"ing") && w.size() > 5)
        w.chop(3);
    else if (w.endsWith(u"ed") && w.size() > 4)
        w.chop(2);
    if (w.endsWith(u'e') && w.size() > 4)
        w.chop(1);
    return w;
}

QString WordRoot(const QString& stem)
{
    if (stem.size() < 5 || !stem[0].isLetter())
        return {};
    QString w = stem;
    static const char16_t* const endings[] = {u"ication", u"ation", u"ition", u"ion", u"ment", u"ance",
                                              u"ence",    u"ity",   u"ive",   u"al",  u"i",    u"y"};
    bool stripped = false;
    for (const char16_t* e : endings) {
        const QStringView ending(e);
        if (w.endsWith(ending) && w.size() - ending.size() >= 4) {
            w.chop(ending.size());
            stripped = true;
            break;
        }
    }
    if (stripped && w.endsWith(u"ss"))
        w = w.chopped(2) + u't'; // admission -> admit
    if (w.size() >= 5 && w[w.size() - 1] == w[w.size() - 2] && !QStringView(u"aeiou").contains(w.back()))
        w.chop(1); // admitt -> admit, shipp -> ship
    return w;
}

const SuggestWords& SuggestWords::Instance()
{
    static const SuggestWords words;
    return words;
}

// Long: one loop per kind of list, each a few lines.
SuggestWords::SuggestWords()
{
    const auto words = [](const char* text) {
        return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
    };
    for (const char* line : kWords) {
        const QStringList sides = QString::fromLatin1(line).split(u'=');
        const QString canonical = StemWord(sides[0].trimmed());
        const QStringList rest = sides[1].split(u'|');
        m_known.insert(canonical);
        m_expansion.insert(canonical, {canonical});
        m_link.insert(canonical, WordLink::Same);
        for (const QString& a : words(rest[0].toLatin1().constData())) {
            const QString s = StemWord(a);
            if (m_expansion.contains(s))
                continue; // the first meaning listed wins
            m_expansion.insert(s, {canonical});
            m_link.insert(s, WordLink::Abbreviation);
            m_known.insert(s);
        }
        if (rest.size() > 1) {
            for (const QString& a : words(rest[1].toLatin1().constData())) {
                const QString s = StemWord(a);
                if (m_expansion.contains(s))
                    continue;
                m_expansion.insert(s, {canonical});
                m_link.insert(s, WordLink::Synonym);
                m_known.insert(s);
            }
        }
    }
    for (const char* line : kInitialisms) {
        const QStringList sides = QString::fromLatin1(line).split(u'=');
        const QString key = StemWord(sides[0].trimmed());
        QStringList expansion;
        for (const QString& w : words(sides[1].toLatin1().constData())) {
            const QString s = StemWord(w);
            const QStringList* e = Expansion(s);
            expansion.append(e ? e->first() : s);
        }
        if (!m_expansion.contains(key)) {
            m_expansion.insert(key, expansion);
            m_link.insert(key, WordLink::Abbreviation);
        }
        m_known.insert(key);
    }
    for (const char* line : kRelated) {
        QStringList list = words(line);
        const double sim = list.takeFirst().toDouble();
        for (QString& w : list) {
            const QString s = StemWord(w);
            const QStringList* e = Expansion(s);
            w = e ? e->first() : s;
            m_known.insert(w);
        }
        for (const QString& a : list)
            for (const QString& b : list)
                if (a != b)
                    m_related[a][b] = std::max(m_related[a].value(b), sim);
    }
    for (const QString& w : words(kStopWords))
        m_stop.insert(StemWord(w));
    for (const QString& w : words(kWeakWords))
        m_weak.insert(StemWord(w));
    for (const QString& w : words(kGeneralWords))
        m_known.insert(StemWord(w));
    for (const QString& w : words(kCompoundTails))
        m_tails.insert(w);
    for (const QString& w : words(kShortCompoundTails))
        m_tails.insert(w);
    for (const QString& w : words(kClassWords))
        m_class.insert(StemWord(w));
    for (const QString& w : words(kKeyWords))
        m_keys.insert(StemWord(w));
    m_known.unite(m_stop);
    m_known.unite(m_weak);
}

const QStringList* SuggestWords::Expansion(const QString& stem) const
{
    const auto it = m_expansion.constFind(stem);
    return it == m_expansion.cend() ? nullptr : &*it;
}

WordLink SuggestWords::LinkOf(const QString& stem) const
{
    return m_link.value(stem, WordLink::Same);
}

double SuggestWords::Relatedness(const QString& a, const QString& b) const
{
    const auto it = m_related.constFind(a);
    return it == m_related.cend() ? 0.0 : it->value(b, 0.0);
}

} // namespace fb
